#include "platform/linux/LinuxStatusItem.h"

#include <QCoreApplication>
#include <QFile>
#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <utility>

#include "foundation/PathString.h"
#include "platform/linux/DisplayText.h"
#include "platform/linux/Identity.h"
#include "platform/linux/WorkText.h"

namespace tavrin {

namespace {

/// The image in one colour, with the transparency of `image`.
QPixmap recoloured(QPixmap image, const QColor& colour) {
  QPainter painter(&image);
  painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
  painter.fillRect(image.rect(), colour);
  return image;
}

/// The desktop recolours a symbolic theme icon itself; images of ours take the text colour of the
/// program's own windows, the nearest to the bar's that a program can know.
QIcon templateIcon(const std::string& iconFolder, const std::string& name) {
  const QString themeName = QLatin1String(identity::applicationId) + QLatin1String("-symbolic");
  if (name == "menuIcon" && QIcon::hasThemeIcon(themeName)) return QIcon::fromTheme(themeName);
  const QColor colour = QGuiApplication::palette().color(QPalette::WindowText);
  QIcon icon;
  for (const char* size : {"16", "22", "24", "32", "48", "64"}) {
    const QPixmap image(
        QFile::decodeName(appendingPathComponent(iconFolder, name + "-" + size + ".png").c_str()));
    if (!image.isNull()) icon.addPixmap(recoloured(image, colour));
  }
  return icon;
}

}  // namespace

LinuxStatusItem::LinuxStatusItem(std::string iconFolder, std::shared_ptr<StatusItems> all)
    : iconFolder_(std::move(iconFolder)), all_(std::move(all)), host_([this] { showOrRemove(); }) {
  all_->items.push_back(this);
}

LinuxStatusItem::~LinuxStatusItem() {
  std::erase(all_->items, this);
}

void LinuxStatusItem::setTemplateImageNamed(const std::string& name) {
  imageName_ = name;
  if (trayIcon_) trayIcon_->setIcon(templateIcon(iconFolder_, imageName_));
}

void LinuxStatusItem::setMenu(std::vector<MenuItem> menu) {
  items_ = std::move(menu);
  auto shownMenu = std::make_unique<QMenu>();
  for (const MenuItem& item : items_) {
    if (item.title.empty()) {
      shownMenu->addSeparator();
      continue;
    }
    QString label = displayText(item.title);
    label.replace(QLatin1Char('&'), QLatin1String("&&"));
    QObject::connect(shownMenu->addAction(label), &QAction::triggered, shownMenu.get(),
                     [action = item.action] {
                       if (action) action();
                     });
  }
  if (trayIcon_) trayIcon_->setContextMenu(shownMenu.get());
  // Later: this may run inside an action of the menu that goes.
  if (menu_) menu_.release()->deleteLater();
  menu_ = std::move(shownMenu);
  showCancelItem();
}

void LinuxStatusItem::workChanged() {
  showToolTip();
  showCancelItem();
}

void LinuxStatusItem::showToolTip() {
  if (!trayIcon_) return;
  const QString toolTip = all_->work ? all_->work->toolTip : QCoreApplication::applicationName();
  if (trayIcon_->toolTip() != toolTip) trayIcon_->setToolTip(toolTip);
}

/// Changes no more of the menu than it must: it may be open.
void LinuxStatusItem::showCancelItem() {
  if (!menu_) return;
  if (!all_->work) {
    // Later: this may run inside their own action.
    for (QAction* item : {cancelItem_.data(), cancelSeparator_.data()}) {
      if (item == nullptr) continue;
      menu_->removeAction(item);
      item->deleteLater();
    }
    cancelItem_.clear();
    cancelSeparator_.clear();
    return;
  }
  if (!cancelItem_ || cancelItem_->parent() != menu_.get()) {
    QAction* first = menu_->actions().value(0);
    cancelSeparator_ = menu_->insertSeparator(first);
    cancelItem_ = new QAction(menu_.get());
    QObject::connect(cancelItem_, &QAction::triggered, cancelItem_, [all = all_] {
      const std::function<void()> cancel = all->work ? all->work->cancel : nullptr;
      if (cancel) cancel();
    });
    menu_->insertAction(cancelSeparator_, cancelItem_);
  }
  cancelItem_->setText(all_->work->cancelTitle);
  cancelItem_->setEnabled(all_->work->canBeCancelled);
}

void LinuxStatusItem::setVisible(bool visible) {
  isVisible_ = visible;
  showOrRemove();
}

void LinuxStatusItem::showOrRemove() {
  if (!isVisible_ || !host_.isAvailable()) {
    trayIcon_.reset();
    return;
  }
  if (trayIcon_) return;
  trayIcon_ = std::make_unique<QSystemTrayIcon>(templateIcon(iconFolder_, imageName_));
  showToolTip();
  if (menu_) trayIcon_->setContextMenu(menu_.get());
  QObject::connect(trayIcon_.get(), &QSystemTrayIcon::activated, trayIcon_.get(),
                   [this](QSystemTrayIcon::ActivationReason reason) {
                     if (reason == QSystemTrayIcon::Trigger) runFirstAction();
                   });
  trayIcon_->show();
}

void LinuxStatusItem::runFirstAction() {
  // A copy: the action may set another menu.
  const std::function<void()> action = items_.empty() ? nullptr : items_.front().action;
  if (action) action();
}

LinuxStatusBar::LinuxStatusBar(std::string iconFolder) : iconFolder_(std::move(iconFolder)) {}

std::unique_ptr<StatusItem> LinuxStatusBar::statusItem() {
  return std::make_unique<LinuxStatusItem>(iconFolder_, all_);
}

void LinuxStatusBar::show(const ShownWork& work, const std::function<void()>& cancel) {
  QString toolTip = workSummary(work);
  setWork(StatusItemWork{std::move(toolTip), cancelTitle(work.kind), !work.isCancelled, cancel});
}

void LinuxStatusBar::end(WorkEnd /*end*/) {
  setWork(std::nullopt);
}

void LinuxStatusBar::setWork(std::optional<StatusItemWork> work) {
  all_->work = std::move(work);
  for (LinuxStatusItem* item : all_->items) item->workChanged();
}

}  // namespace tavrin
