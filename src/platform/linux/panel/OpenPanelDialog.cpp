#include "platform/linux/panel/OpenPanelDialog.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPushButton>
#include <QToolButton>
#include <QTreeView>
#include <algorithm>
#include <filesystem>
#include <utility>

#include "foundation/PathString.h"
#include "platform/linux/DisplayText.h"
#include "platform/linux/LinuxDirectories.h"
#include "platform/linux/panel/PanelPathBar.h"
#include "platform/linux/panel/TypedPath.h"

namespace tavrin {

namespace {

bool isReturn(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

}  // namespace

bool OpenPanelDialog::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress) {
    const auto& key = static_cast<const QKeyEvent&>(*event);
    if (isReturn(key) ? returnPressedIn(watched) : beginsTypedPath(watched, key)) return true;
  }
  if (watched == fileList_->viewport() && event->type() == QEvent::MouseButtonPress) {
    const QPoint point = static_cast<const QMouseEvent&>(*event).position().toPoint();
    if (!fileList_->indexAt(point).isValid()) fileList_->clearSelection();
  }
  return QDialog::eventFilter(watched, event);
}

// Return is taken before the widget hands it on to the dialog, which would press the default
// button.
bool OpenPanelDialog::returnPressedIn(const QObject* widget) {
  if (widget == fileList_) {
    const std::vector<int> rows = selectedRows();
    rows.size() == 1 ? openRow(rows.front()) : confirm();
  } else if (widget == places_) {
    openPlace(places_->currentRow());
  } else if (widget == locationEdit_) {
    locationReturnPressed();
  } else {
    return false;
  }
  return true;
}

bool OpenPanelDialog::beginsTypedPath(const QObject* widget, const QKeyEvent& event) {
  const bool isStart = event.text() == QLatin1String("/") || event.text() == QLatin1String("~");
  if (widget != fileList_ || !isStart) return false;
  locationEdit_->setFocus(Qt::ShortcutFocusReason);
  locationEdit_->setText(event.text());
  locationEdited();
  return true;
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
    enterFolder(start);
    return;
  }
  enterFolder(start.deletingLastPathComponent(), start.lastPathComponent());
  selectName(start.lastPathComponent());
}

void OpenPanelDialog::selectName(const std::string& name) {
  const std::optional<int> row = model_->rowOfName(name);
  if (!row) return;
  const QModelIndex index = model_->index(*row, FolderListModel::NameColumn);
  if (index.flags().testFlag(Qt::ItemIsSelectable)) fileList_->setCurrentIndex(index);
  fileList_->scrollTo(index, QAbstractItemView::PositionAtCenter);
}

void OpenPanelDialog::enterFolder(const FileURL& folder, const std::string& nameToShow) {
  const FileURL previous = model_->folder();
  const Status listed = model_->setFolder(folder.path(), nameToShow);
  emptyHint_->setText(listed ? QCoreApplication::translate("Tavrin", "This folder is empty.")
                             : QCoreApplication::translate("Tavrin",
                                                           "The contents of this folder cannot be "
                                                           "shown."));
  emptyHint_->setVisible(model_->rowCount() == 0);
  pathBar_->setFolder(folder);
  fileList_->scrollToTop();
  locationIsTyped_ = false;
  showCandidates();
  if (!(previous.deletingLastPathComponent() == folder)) return;
  // Back in the parent, the keyboard stands on the folder it came from, which is not selected: the
  // way up is a way of picking the parent.
  const std::optional<int> row = model_->rowOfName(previous.lastPathComponent());
  if (!row) return;
  const QModelIndex index = model_->index(*row, FolderListModel::NameColumn);
  fileList_->selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
  fileList_->scrollTo(index, QAbstractItemView::PositionAtCenter);
}

void OpenPanelDialog::openRow(int row) {
  const FileURL url = model_->urlOfRow(row);
  if (!options_.rules.isEnabled(url, model_->isFolderRow(row))) return;
  if (model_->isFolderRow(row)) {
    enterFolder(url);
    return;
  }
  confirm();
}

void OpenPanelDialog::openPlace(int row) {
  const QListWidgetItem* item = places_->item(row);
  if (item == nullptr || !item->flags().testFlag(Qt::ItemIsEnabled)) return;
  const QByteArray path = item->data(Qt::UserRole).toByteArray();
  enterFolder(FileURL::fileURLWithPath(path.toStdString()));
}

void OpenPanelDialog::confirm() {
  const std::vector<FileURL> urls = candidates();
  if (urls.empty()) return;
  std::vector<PickedItem> picked;
  for (const FileURL& url : urls) {
    const auto item = model_->take(url);
    if (!item) return refuse(url);
    picked.push_back({url, item.value()});
  }
  picked_ = std::move(picked);
  accept();
}

void OpenPanelDialog::refuse(const FileURL& url) {
  const bool wasTyped = locationIsTyped_;
  const QString typed = locationEdit_->text();
  const bool isRow = !(url == model_->folder());
  enterFolder(model_->folder(), isRow ? url.lastPathComponent() : std::string());
  if (wasTyped) {
    locationEdit_->setText(typed);
    locationEdited();
  } else if (isRow) {
    // Return must not pick the whole folder in its stead.
    selectName(url.lastPathComponent());
  }
  problemLabel_->setText(QCoreApplication::translate(
      "Tavrin", "This item cannot be opened, or has been replaced since it was shown."));
}

void OpenPanelDialog::locationReturnPressed() {
  const std::optional<FileURL> url = typedURL();
  if (!url || !isFolderPath(*url) || *url == model_->folder()) {
    confirm();
    return;
  }
  if (options_.rules.isEnabled(*url, true)) enterFolder(*url);
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
  const std::vector<int> rows = selectedRows();
  const std::vector<FileURL> urls = candidates();
  promptButton_->setEnabled(!urls.empty());
  problemLabel_->clear();
  if (rows.size() > 1) {
    locationEdit_->setText(QCoreApplication::translate("Tavrin", "%n item(s)", nullptr,
                                                       static_cast<int>(rows.size())));
    return;
  }
  locationEdit_->setText(
      displayName(rows.empty() ? model_->folder().path() : model_->urlOfRow(rows.front()).path()));
}

std::vector<FileURL> OpenPanelDialog::candidates() const {
  if (locationIsTyped_) {
    const std::optional<FileURL> url = typedURL();
    if (!url || !options_.rules.isPickable(*url, isFolderPath(*url))) return {};
    return {*url};
  }
  const std::vector<int> rows = selectedRows();
  if (rows.empty()) {
    if (!options_.rules.isPickable(model_->folder(), true)) return {};
    return {model_->folder()};
  }
  std::vector<FileURL> urls;
  for (const int row : rows) {
    const FileURL url = model_->urlOfRow(row);
    if (!options_.rules.isPickable(url, model_->isFolderRow(row))) return {};
    urls.push_back(url);
  }
  return urls;
}

std::vector<int> OpenPanelDialog::selectedRows() const {
  std::vector<int> rows;
  const QModelIndexList indexes =
      fileList_->selectionModel()->selectedRows(FolderListModel::NameColumn);
  for (const QModelIndex& index : indexes) {
    if (index.flags().testFlag(Qt::ItemIsSelectable)) rows.push_back(index.row());
  }
  std::sort(rows.begin(), rows.end());
  return rows;
}

std::optional<FileURL> OpenPanelDialog::typedURL() const {
  if (!locationIsTyped_)
    return candidates().empty() ? std::nullopt : std::optional(candidates().front());
  return existingItemAtTypedPath(locationEdit_->text(), model_->folder());
}

QString OpenPanelDialog::problemOfTypedPath() const {
  if (locationEdit_->text().trimmed().isEmpty() || !candidates().empty()) return {};
  return typedURL() ? QCoreApplication::translate("Tavrin", "This item cannot be chosen here.")
                    : QCoreApplication::translate("Tavrin", "There is no such item.");
}

}  // namespace tavrin
