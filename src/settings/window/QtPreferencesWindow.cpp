#include "settings/window/QtPreferencesWindow.h"

#include <ui_PreferencesWindow.h>

#include <QApplication>
#include <QIcon>
#include <QMouseEvent>
#include <QWindow>
#include <string>
#include <utility>

#include "settings/window/WindowPalette.h"

namespace tavrin {

namespace {

constexpr int largeIconSize = 96;
const QColor accentColour(0x2f, 0x83, 0xe6);

/// Texts beside the main ones: lighter on light backgrounds, darker on dark ones.
void setSecondaryColour(QWidget& label, const QPalette& palette) {
  QPalette own = palette;
  QColor colour = palette.color(QPalette::WindowText);
  colour.setAlphaF(0.68F);
  own.setColor(QPalette::WindowText, colour);
  label.setPalette(own);
}

}  // namespace

QtPreferencesWindow::QtPreferencesWindow(const Bundle& bundle)
    : ui_(std::make_unique<Ui::PreferencesWindow>()) {
  ui_->setupUi(this);
  fillTexts(bundle);
  ui_->iconLabel->setPixmap(QApplication::windowIcon().pixmap(largeIconSize, largeIconSize));
  setBackgroundColor(1.0, 1.0, 1.0);
  QObject::connect(ui_->authorizeRootButton, &QCheckBox::clicked, this, [this] {
    if (authorizeRootAction_) authorizeRootAction_();
  });
}

QtPreferencesWindow::~QtPreferencesWindow() = default;

void QtPreferencesWindow::fillTexts(const Bundle& bundle) {
  const std::string name = bundle.objectForInfoDictionaryKey("CFBundleDisplayName").value_or("");
  const std::string version =
      bundle.objectForInfoDictionaryKey("CFBundleShortVersionString").value_or("");
  setWindowTitle(QString::fromStdString(name));
  ui_->nameLabel->setText(QString::fromStdString(name));
  ui_->versionLabel->setText(
      QApplication::translate("Tavrin", "Version %1").arg(QString::fromStdString(version)));
  ui_->purposeLabel->setText(QApplication::translate(
      "Tavrin",
      "Adds your own commands to the file manager's context menu: new files from templates, "
      "favourite folders and applications, cut and paste, icons and more."));
  ui_->authorizeRootButton->setText(QApplication::translate("Tavrin", "Authorize the whole disk"));
  ui_->authorizeRootNote->setText(QApplication::translate(
      "Tavrin",
      "Commands then work in every folder without asking. Switching it off forgets all folders "
      "authorized so far."));
  ui_->authorizeRootButton->setAccessibleDescription(ui_->authorizeRootNote->text());
}

void QtPreferencesWindow::makeKeyAndOrderFront() {
  setWindowState(windowState() & ~Qt::WindowMinimized);
  show();
  raise();
  activateWindow();
}

void QtPreferencesWindow::setBackgroundColor(double red, double green, double blue) {
  const QColor background = QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green),
                                             static_cast<float>(blue));
  const QPalette palette = paletteForBackground(background, accentColour);
  setPalette(palette);
  // The box stands out from the background, which the style's own frame hardly does.
  QPalette boxPalette = palette;
  boxPalette.setColor(QPalette::Base, palette.color(QPalette::Midlight));
  ui_->authorizeRootButton->setPalette(boxPalette);
  setSecondaryColour(*ui_->versionLabel, palette);
  setSecondaryColour(*ui_->authorizeRootNote, palette);
  QPalette dividerPalette = palette;
  QColor line = palette.color(QPalette::WindowText);
  line.setAlphaF(0.18F);
  dividerPalette.setColor(QPalette::WindowText, line);
  ui_->divider->setPalette(dividerPalette);
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

void QtPreferencesWindow::mousePressEvent(QMouseEvent* event) {
  // Only clicks that no control has taken arrive here.
  if (isMovableByBackground_ && event->button() == Qt::LeftButton && windowHandle() != nullptr) {
    windowHandle()->startSystemMove();
  }
  QMainWindow::mousePressEvent(event);
}

}  // namespace tavrin
