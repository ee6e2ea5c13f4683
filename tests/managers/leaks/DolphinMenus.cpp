// Loads the module for Dolphin, its path being the first argument, as KIO does, opens its menu as
// often as the second one says, and closes each. Fails when a menu has no items, or when a closed
// one has left objects behind in the window.
#include <KAbstractFileItemActionPlugin>
#include <KFileItem>
#include <KFileItemListProperties>
#include <KPluginFactory>
#include <KPluginMetaData>
#include <QAction>
#include <QApplication>
#include <QMenu>
#include <cstdio>
#include <cstdlib>

namespace {

[[noreturn]] void fail(const char* what) {
  std::fprintf(stderr, "%s\n", what);
  std::_Exit(EXIT_FAILURE);
}

int countItems(const QList<QAction*>& actions) {
  int count = 0;
  for (const QAction* action : actions) {
    if (action->text().isEmpty()) fail("an item without a title");
    count += 1 + (action->menu() == nullptr ? 0 : countItems(action->menu()->actions()));
  }
  return count;
}

/// The number of items of the menu for one folder, and of objects that it has added to the window.
int openMenu(KAbstractFileItemActionPlugin& plugin, QWidget& window) {
  const KFileItem folder(QUrl::fromLocalFile(QStringLiteral("/usr")),
                         QStringLiteral("inode/directory"), S_IFDIR);
  QMenu menu;
  menu.addActions(plugin.actions(KFileItemListProperties({folder}), &window));
  return countItems(menu.actions());
}

}  // namespace

int main(int argumentCount, char** arguments) {
  qputenv("QT_QPA_PLATFORM", "offscreen");
  const QApplication application(argumentCount, arguments);
  if (argumentCount != 3) fail("usage: tavrin-dolphin-menus MODULE OPENINGS");
  QWidget window;
  const auto loaded = KPluginFactory::instantiatePlugin<KAbstractFileItemActionPlugin>(
      KPluginMetaData(QString::fromLocal8Bit(arguments[1])), &window);
  if (!loaded) fail("the module cannot be loaded");
  const int items = openMenu(*loaded.plugin, window);
  if (items == 0) fail("the menu has no items");
  const auto objects = window.findChildren<QObject*>().size();
  for (long left = std::strtol(arguments[2], nullptr, 10); left > 1; --left) {
    if (openMenu(*loaded.plugin, window) != items) fail("another menu");
    QCoreApplication::processEvents();
  }
  if (window.findChildren<QObject*>().size() != objects) fail("objects are left of a menu");
}
