#pragma once

#include <KAbstractFileItemActionPlugin>
#include <QPointer>
#include <QVariantList>
#include <vector>

class QAction;

namespace tavrin {

/// Gives a window of Dolphin its items, and other programs that show the context menu of KIO.
class DolphinMenu final : public KAbstractFileItemActionPlugin {
  Q_OBJECT

 public:
  DolphinMenu(QObject* parent, const QVariantList& arguments);
  ~DolphinMenu() override;

  /// Called once for each context menu. The items of the menu before go: KIO has no word for the
  /// end of a menu, and a window shows one at a time.
  QList<QAction*> actions(const KFileItemListProperties& properties,
                          QWidget* parentWidget) override;

 private:
  void forgetMenu();

  /// The actions and the submenus of the last menu, unless `parentWidget` took them with it.
  std::vector<QPointer<QObject>> shown_;
};

}  // namespace tavrin
