#include "settings/window/QtPreferencesWindow.h"

#include <ui_PreferencesWindow.h>

#include <QApplication>
#include <QCloseEvent>
#include <QIcon>
#include <QMouseEvent>
#include <QScreen>
#include <QWindow>
#include <string>
#include <utility>

#include "platform/SystemDefaults.h"
#include "settings/window/ChildWidgets.h"
#include "settings/window/FileManagersDialog.h"
#include "settings/window/SettingsViewController.h"

namespace tavrin {

namespace {

constexpr int headIconSize = 36;

/// Where the window stood: "x y width height" in points. The key is the one that windows of this
/// name have everywhere.
constexpr const char* frameKey = "NSWindow Frame Prefswindow";

/// The size of a frame as far as its screen has room for it.
QSize boundedByScreen(const QRect& frame) {
  const QScreen* screen = QGuiApplication::screenAt(frame.center());
  if (screen == nullptr) screen = QGuiApplication::primaryScreen();
  return frame.size().boundedTo(screen->availableSize());
}

/// Of the window's title bar, so much must be on a screen to be grasped.
constexpr int leastVisible = 80;

bool isOnScreen(const QRect& frame) {
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QRect seen = screen->availableGeometry().intersected(frame);
    if (seen.width() >= leastVisible && seen.height() >= leastVisible &&
        frame.top() >= screen->availableGeometry().top()) {
      return true;
    }
  }
  return false;
}

}  // namespace

QtPreferencesWindow::QtPreferencesWindow(Platform& platform, UserDefaults& standardUserDefaults,
                                         SettingsController& settings)
    : platform_(platform),
      standardUserDefaults_(standardUserDefaults),
      settings_(settings),
      ui_(std::make_unique<Ui::PreferencesWindow>()) {
  ui_->setupUi(this);
  fillTexts(platform.bundle);
  applyColours();
  contrastObservation_ = standardUserDefaults.observe(
      system_defaults::increaseContrast, [this](const auto& /*newValue*/) { applyColours(); });
  restoreFrame();
  QObject::connect(ui_->authorizeRootButton, &QCheckBox::clicked, this, [this] {
    if (authorizeRootAction_) authorizeRootAction_();
  });
  controller_ =
      std::make_unique<SettingsViewController>(*ui_, platform, standardUserDefaults, settings);
  controller_->awakeFromNib();
  platform.extensionController.setManagementInterface([this] { showFileManagers(); });
}

QtPreferencesWindow::~QtPreferencesWindow() {
  platform_.extensionController.setManagementInterface({});
  // An editor that is open stores its text as it loses the keyboard, which takes the controller.
  hide();
  delete takeCentralWidget();
}

void QtPreferencesWindow::fillTexts(const Bundle& bundle) {
  const std::string name = bundle.objectForInfoDictionaryKey("CFBundleDisplayName").value_or("");
  setWindowTitle(QString::fromStdString(name));
  ui_->nameLabel->setText(QString::fromStdString(name));
  ui_->iconLabel->setPixmap(
      QApplication::windowIcon().pixmap(QSize(headIconSize, headIconSize), devicePixelRatioF()));
  ui_->authorizeRootButton->setAccessibleDescription(ui_->authorizeRootNote->text());
  alignLabels(*ui_->content);
}

void QtPreferencesWindow::makeKeyAndOrderFront() {
  setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
  raise();
  activateWindow();
}

void QtPreferencesWindow::setBackgroundColor(double red, double green, double blue) {
  background_ = QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green),
                                 static_cast<float>(blue));
  applyColours();
}

WindowPalette QtPreferencesWindow::colours() const {
  const bool isMore = standardUserDefaults_.boolForKey(system_defaults::increaseContrast);
  return {background_, QGuiApplication::palette(), isMore ? Contrast::More : Contrast::Normal};
}

void QtPreferencesWindow::applyColours() {
  const WindowPalette palette = colours();
  setPalette(palette.controls());
  setSwitchPalettes(*ui_->content, palette.controls());
  ui_->sidebar->setPalette(palette.sidebar());
  ui_->divider->setPalette(palette.line());
  for (QLabel* label : {ui_->Version, ui_->authorizeRootNote, ui_->createNewFilePageIntro,
                        ui_->copyFilesToPageIntro, ui_->commonPathPageIntro,
                        ui_->customIconPageIntro, ui_->otherOptionPageIntro, ui_->learnPageIntro,
                        ui_->moreAppPageIntro, ui_->contactUsPageIntro}) {
    label->setPalette(palette.secondary());
  }
  if (fileManagers_ != nullptr) fileManagers_->setColours(palette);
}

void QtPreferencesWindow::showFileManagers() {
  if (fileManagers_ == nullptr) {
    fileManagers_ = new FileManagersDialog(platform_, settings_, colours(), this);
    fileManagers_->setAttribute(Qt::WA_DeleteOnClose);
  }
  fileManagers_->open();
  fileManagers_->raise();
  fileManagers_->activateWindow();
}

void QtPreferencesWindow::setAuthorizeRootButtonState(bool on) {
  ui_->authorizeRootButton->setChecked(on);
}

bool QtPreferencesWindow::authorizeRootButtonState() const {
  return ui_->authorizeRootButton->isChecked();
}

void QtPreferencesWindow::setAuthorizeRootButtonAction(std::function<void()> action) {
  authorizeRootAction_ = std::move(action);
}

void QtPreferencesWindow::setClosedAction(std::function<void()> action) {
  closedAction_ = std::move(action);
}

void QtPreferencesWindow::mousePressEvent(QMouseEvent* event) {
  // Only clicks that no control has taken arrive here.
  if (isMovableByBackground_ && event->button() == Qt::LeftButton && windowHandle() != nullptr) {
    windowHandle()->startSystemMove();
  }
  QMainWindow::mousePressEvent(event);
}

void QtPreferencesWindow::closeEvent(QCloseEvent* event) {
  saveFrame();
  QMainWindow::closeEvent(event);
  if (event->isAccepted() && closedAction_) closedAction_();
}

void QtPreferencesWindow::saveFrame() {
  const QPoint place = frameGeometry().topLeft();
  const QSize size = this->size();
  const QString frame = QStringLiteral("%1 %2 %3 %4")
                            .arg(place.x())
                            .arg(place.y())
                            .arg(size.width())
                            .arg(size.height());
  standardUserDefaults_.setObject(frame.toStdString(), frameKey);
}

void QtPreferencesWindow::restoreFrame() {
  setMinimumSize(boundedByScreen({pos(), minimumSize()}));
  resize(boundedByScreen({pos(), size()}));
  const auto stored = standardUserDefaults_.stringForKey(frameKey);
  const QStringList numbers =
      QString::fromStdString(stored.value_or("")).split(u' ', Qt::SkipEmptyParts);
  if (numbers.size() != 4) return;
  const QRect frame(numbers[0].toInt(), numbers[1].toInt(), numbers[2].toInt(), numbers[3].toInt());
  if (!isOnScreen(frame)) return;
  resize(boundedByScreen(frame));
  move(frame.topLeft());
}

}  // namespace tavrin
