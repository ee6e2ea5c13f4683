# The modules that the file managers load for their menus: the name of the file, without ".so", and the
# folders below the library folder where each manager looks for modules.
set(TAVRIN_MENU_MODULE libtavrin-menu)
set(TAVRIN_NAUTILUS_MODULE_FOLDER nautilus/extensions-4)
set(TAVRIN_NEMO_MODULE_FOLDER nemo/extensions-3.0)
set(TAVRIN_CAJA_MODULE_FOLDER caja/extensions-2.0)
set(TAVRIN_THUNAR_MODULE_FOLDER thunarx-3)
# Of the Dolphin of Qt 5 and of that of Qt 6.
set(TAVRIN_DOLPHIN_KF5_MODULE_FOLDER qt5/plugins/kf5/kfileitemaction)
set(TAVRIN_DOLPHIN_KF6_MODULE_FOLDER qt6/plugins/kf6/kfileitemaction)

# What the module of Nemo calls its object; Nemo tells extensions by that.
set(TAVRIN_NEMO_TYPE TavrinNemoMenu)
