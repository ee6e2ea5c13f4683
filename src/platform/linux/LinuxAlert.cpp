#include "platform/linux/LinuxAlert.h"

#include <QCoreApplication>
#include <QFile>
#include <QIcon>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QStyle>
#include <algorithm>

#include "platform/linux/ApplicationIcon.h"
#include "platform/linux/DisplayText.h"
#include "platform/linux/QtWindows.h"

namespace tavrin {

namespace {

/// The desktop places buttons by their roles; the code of a button does not depend on its place.
QMessageBox::ButtonRole roleOfButton(std::size_t index, std::size_t escapeIndex) {
  if (index == 0) return QMessageBox::AcceptRole;
  return index == escapeIndex ? QMessageBox::RejectRole : QMessageBox::ActionRole;
}

QMessageBox::Icon iconOfStyle(Alert::Style style) {
  switch (style) {
    case Alert::Style::Informational:
      return QMessageBox::Information;
    case Alert::Style::Critical:
      return QMessageBox::Critical;
    case Alert::Style::Warning:
      break;
  }
  return QMessageBox::Warning;
}

/// A title in bold, and lines of a readable length below it: the box on its own would make the text
/// as narrow as its buttons.
void layOutTexts(QMessageBox& box) {
  constexpr int widestText = 380;
  if (auto* title = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))) {
    QFont bold = title->font();
    bold.setBold(true);
    title->setFont(bold);
  }
  if (auto* text = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"))) {
    const int width = text->fontMetrics().horizontalAdvance(text->text()) + 2 * text->margin() + 1;
    text->setMinimumWidth(std::min(width, widestText));
  }
}

}  // namespace

void LinuxAlert::setMessageText(const std::string& text) {
  messageText_ = displayText(text);
}

void LinuxAlert::setInformativeText(const std::string& text) {
  informativeText_ = displayText(text);
}

void LinuxAlert::setIconWithContentsOfFile(const std::string& path) {
  iconFile_ = QFile::decodeName(path.c_str());
}

void LinuxAlert::addButtonWithTitle(const std::string& title) {
  buttonTitles_.push_back(displayText(title));
}

int LinuxAlert::runModal() {
  return run(nullptr);
}

int LinuxAlert::runModalAsSheet(Window* window) {
  QWidget* parent = widgetOfWindow(window);
  return run(parent != nullptr ? parent : mainWindowWidget());
}

std::size_t LinuxAlert::escapeButtonIndex() const {
  const QString cancel = QCoreApplication::translate("Tavrin", "Cancel");
  const auto found = std::find(buttonTitles_.begin(), buttonTitles_.end(), cancel);
  if (found == buttonTitles_.end()) return buttonTitles_.size() - 1;
  return static_cast<std::size_t>(found - buttonTitles_.begin());
}

int LinuxAlert::run(QWidget* parent) {
  // An alert without buttons has one to close it, as on the platform.
  if (buttonTitles_.empty()) buttonTitles_.push_back(QCoreApplication::translate("Tavrin", "OK"));
  if (!mayAskTheUser()) return firstButtonReturn + static_cast<int>(escapeButtonIndex());
  ensureApplicationIcon();
  QMessageBox box(parent);
  box.setIcon(iconOfStyle(style_));
  if (const QIcon icon(iconFile_); !icon.isNull()) {
    const int size = box.style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, &box);
    box.setIconPixmap(icon.pixmap(QSize(size, size), box.devicePixelRatio()));
  }
  box.setWindowTitle(QCoreApplication::applicationName());
  box.setTextFormat(Qt::PlainText);
  box.setText(messageText_.isEmpty() ? informativeText_ : messageText_);
  if (!messageText_.isEmpty()) {
    box.setInformativeText(informativeText_);
    layOutTexts(box);
  }

  const std::size_t escapeIndex = escapeButtonIndex();
  std::vector<QPushButton*> buttons;
  for (const QString& title : buttonTitles_) {
    QString label = title;
    label.replace(QLatin1Char('&'), QLatin1String("&&"));
    buttons.push_back(box.addButton(label, roleOfButton(buttons.size(), escapeIndex)));
  }
  box.setDefaultButton(buttons.front());
  box.setEscapeButton(buttons[escapeIndex]);
  box.setWindowModality(Qt::ApplicationModal);
  bringToFront(box);
  box.exec();
  const auto pressed = std::find(buttons.begin(), buttons.end(), box.clickedButton());
  const auto index = pressed == buttons.end() ? static_cast<std::ptrdiff_t>(escapeIndex)
                                              : pressed - buttons.begin();
  return firstButtonReturn + static_cast<int>(index);
}

std::unique_ptr<Alert> LinuxAlertProvider::alert() {
  return std::make_unique<LinuxAlert>();
}

}  // namespace tavrin
