#include "extensions/dolphin/DolphinMenu.h"

#include <KFileItemListProperties>
#include <KStartupInfo>
#include <KWindowSystem>
#include <QAbstractEventDispatcher>
#include <QAction>
#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QMenu>
#include <memory>
#include <string>

#include "extensions/common/MenuExtension.h"
#include "extensions/dolphin/DolphinItems.h"
#include "foundation/FileManagers.h"

namespace tavrin {

namespace {

using OpenedMenuPointer = std::shared_ptr<const OpenedMenu>;

void copyText(const std::string& text) {
  QGuiApplication::clipboard()->setText(QString::fromStdString(text));
}

/// A name that says when the user has clicked, on X11. Wayland's compositor would hand its token
/// out later, to an event loop.
std::string startupToken() {
  if (!KWindowSystem::isPlatformX11()) return {};
  return KStartupInfo::createNewStartupId().toStdString();
}

/// The one of the process: Dolphin has a plugin object for each window. It is never destroyed, the
/// end of Dolphin is its end.
MenuExtension& menuExtension() {
  static auto* const extension =
      new MenuExtension({file_manager::dolphin, TAVRIN_PREFIX_FROM_MODULE, copyText, startupToken});
  return *extension;
}

/// Whether Qt runs GLib's main context, by which the menu gets to know of changed settings and of
/// failures. It does not when $QT_NO_GLIB is set, or when it was built so.
bool isMainContextRun() {
  static const bool isRun = [] {
    const auto* dispatcher = QAbstractEventDispatcher::instance();
    if (dispatcher != nullptr && dispatcher->inherits("QEventDispatcherGlib")) return true;
    qWarning("tavrin: no menu, since Qt does not use the event loop of GLib");
    return false;
  }();
  return isRun;
}

/// The title as Qt's labels read it, where an ampersand marks the key of the letter behind it.
QString labelOf(const MenuItem& item) {
  return QString::fromStdString(item.title).replace(QLatin1Char('&'), QLatin1String("&&"));
}

QIcon iconOf(const MenuItem& item) {
  const QByteArray icon = QByteArray::fromStdString(item.icon);
  if (icon.startsWith('/')) return QIcon(QFile::decodeName(icon));
  return icon.isEmpty() ? QIcon() : QIcon::fromTheme(QString::fromUtf8(icon));
}

QAction* newAction(const MenuItem& item, const OpenedMenuPointer& menu, QObject* parent) {
  auto* action = new QAction(iconOf(item), labelOf(item), parent);
  QObject::connect(action, &QAction::triggered, action,
                   [menu, &item] { menuExtension().activate(*menu, item); });
  return action;
}

QMenu* newSubmenu(const MenuItem& item, const OpenedMenuPointer& menu, QWidget* parent) {
  auto* submenu = new QMenu(labelOf(item), parent);
  submenu->setIcon(iconOf(item));
  for (const MenuItem& each : item.submenu) {
    submenu->addAction(each.submenu.empty() ? newAction(each, menu, submenu)
                                            : newSubmenu(each, menu, submenu)->menuAction());
  }
  return submenu;
}

OpenedMenuPointer menuFor(const KFileItemList& items) {
  auto selection = std::make_shared<DolphinItems>(items);
  // A folder alone is selected, or it is the one in view: KIO does not tell.
  const bool mayBeInView = selection->count() == 1 && selection->isFolder(0);
  return mayBeInView ? menuExtension().menuForFolderOrItem(std::move(selection))
                     : menuExtension().menuForItems(std::move(selection));
}

}  // namespace

DolphinMenu::DolphinMenu(QObject* parent, const QVariantList& /*arguments*/)
    : KAbstractFileItemActionPlugin(parent) {}

DolphinMenu::~DolphinMenu() {
  forgetMenu();
}

QList<QAction*> DolphinMenu::actions(const KFileItemListProperties& properties,
                                     QWidget* parentWidget) {
  try {
    forgetMenu();
    QList<QAction*> actions;
    if (!isMainContextRun()) return actions;
    const OpenedMenuPointer menu = menuFor(properties.items());
    for (const MenuItem& item : menu->items) {
      if (item.submenu.empty()) {
        actions.append(newAction(item, menu, this));
        shown_.emplace_back(actions.last());
      } else {
        QMenu* submenu = newSubmenu(item, menu, parentWidget);
        actions.append(submenu->menuAction());
        shown_.emplace_back(submenu);
      }
    }
    return actions;
  } catch (...) {
    return {};
  }
}

void DolphinMenu::forgetMenu() {
  for (const QPointer<QObject>& object : shown_) delete object.data();
  shown_.clear();
}

}  // namespace tavrin
