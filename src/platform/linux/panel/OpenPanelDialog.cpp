#include "platform/linux/panel/OpenPanelDialog.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QToolButton>
#include <filesystem>
#include <utility>

#include "foundation/PathString.h"
#include "platform/linux/DisplayText.h"
#include "platform/linux/LinuxDirectories.h"
#include "platform/linux/TextTable.h"
#include "platform/linux/panel/TypedPath.h"

namespace tavrin {

namespace {

QString itemCount(std::size_t count) {
  const std::string text = translatedCount("%n item", "%n items", count);
  return QString::fromStdString(text).replace(QLatin1String("%n"),
                                              QLocale().toString(qulonglong{count}));
}

}  // namespace

bool OpenPanelDialog::eventFilter(QObject* watched, QEvent* event) {
  // Return is taken before the field hands it on to the dialog, which would press the default
  // button.
  if (event->type() == QEvent::KeyPress && watched == locationEdit_ &&
      isReturn(static_cast<const QKeyEvent&>(*event))) {
    locationReturnPressed();
    return true;
  }
  return QDialog::eventFilter(watched, event);
}

void OpenPanelDialog::beginTypedPath(const QString& text) {
  locationEdit_->setFocus(Qt::ShortcutFocusReason);
  locationEdit_->setText(text);
  locationEdited();
}

void OpenPanelDialog::keyPressEvent(QKeyEvent* event) {
  // Return presses the focused button rather than the default one behind its back.
  auto* button = qobject_cast<QToolButton*>(focusWidget());
  if (button != nullptr && isReturn(*event)) {
    button->click();
    return;
  }
  QDialog::keyPressEvent(event);
}

void OpenPanelDialog::showStart() {
  const FileURL start =
      options_.directory.value_or(FileURL::fileURLWithPath(currentAccount().homeDirectory));
  std::error_code missing;
  if (std::filesystem::is_directory(start.path(), missing)) {
    browser_->enterFolder(start);
    return;
  }
  browser_->enterFolder(start.deletingLastPathComponent(), start.lastPathComponent());
  browser_->selectName(start.lastPathComponent());
}

void OpenPanelDialog::folderShown() {
  locationIsTyped_ = false;
  showCandidates();
}

void OpenPanelDialog::confirm() {
  const std::vector<FileURL> urls = candidates();
  if (urls.empty()) return;
  std::vector<PickedItem> picked;
  for (const FileURL& url : urls) {
    const auto item = browser_->model().take(url);
    if (!item) return refuse(url);
    picked.push_back({url, item.value()});
  }
  picked_ = std::move(picked);
  accept();
}

void OpenPanelDialog::refuse(const FileURL& url) {
  const bool wasTyped = locationIsTyped_;
  const QString typed = locationEdit_->text();
  const bool isRow = !(url == browser_->folder());
  browser_->enterFolder(browser_->folder(), isRow ? url.lastPathComponent() : std::string());
  if (wasTyped) {
    locationEdit_->setText(typed);
    locationEdited();
  } else if (isRow) {
    // Return must not pick the whole folder in its stead.
    browser_->selectName(url.lastPathComponent());
  }
  problemLabel_->setText(QCoreApplication::translate(
      "Tavrin", "This item cannot be opened, or has been replaced since it was shown."));
}

void OpenPanelDialog::locationReturnPressed() {
  const std::optional<FileURL> url = typedURL();
  if (!url || !isFolderPath(*url) || *url == browser_->folder()) {
    confirm();
    return;
  }
  if (options_.rules.isEnabled(*url, true)) browser_->enterFolder(*url);
}

void OpenPanelDialog::selectionChanged() {
  locationIsTyped_ = false;
  showCandidates();
}

void OpenPanelDialog::locationEdited() {
  locationIsTyped_ = true;
  promptButton_->setEnabled(!candidates().empty());
  problemLabel_->setText(problemOfTypedPath());
}

void OpenPanelDialog::showCandidates() {
  const std::vector<int> rows = browser_->selectedRows();
  const std::vector<FileURL> urls = candidates();
  promptButton_->setEnabled(!urls.empty());
  problemLabel_->clear();
  if (rows.size() > 1) {
    locationEdit_->setText(itemCount(rows.size()));
    return;
  }
  locationEdit_->setText(displayName(
      rows.empty() ? browser_->folder().path() : browser_->model().urlOfRow(rows.front()).path()));
}

std::vector<FileURL> OpenPanelDialog::candidates() const {
  if (locationIsTyped_) {
    const std::optional<FileURL> url = typedURL();
    if (!url || !options_.rules.isPickable(*url, isFolderPath(*url))) return {};
    return {*url};
  }
  const std::vector<int> rows = browser_->selectedRows();
  if (rows.empty()) {
    if (!options_.rules.isPickable(browser_->folder(), true)) return {};
    return {browser_->folder()};
  }
  std::vector<FileURL> urls;
  for (const int row : rows) {
    const FileURL url = browser_->model().urlOfRow(row);
    if (!options_.rules.isPickable(url, browser_->model().isFolderRow(row))) return {};
    urls.push_back(url);
  }
  return urls;
}

std::optional<FileURL> OpenPanelDialog::typedURL() const {
  if (!locationIsTyped_)
    return candidates().empty() ? std::nullopt : std::optional(candidates().front());
  return existingItemAtTypedPath(locationEdit_->text(), browser_->folder());
}

QString OpenPanelDialog::problemOfTypedPath() const {
  if (locationEdit_->text().trimmed().isEmpty() || !candidates().empty()) return {};
  return typedURL() ? QCoreApplication::translate("Tavrin", "This item cannot be chosen here.")
                    : QCoreApplication::translate("Tavrin", "There is no such item.");
}

}  // namespace tavrin
