#include "platform/linux/panel/SavePanelDialog.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <QCoreApplication>
#include <QFile>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <filesystem>
#include <utility>

#include "foundation/PathString.h"
#include "platform/linux/DisplayText.h"
#include "platform/linux/LinuxDirectories.h"
#include "platform/linux/QtWindows.h"

namespace tavrin {

namespace {

QString quoted(const std::string& name) {
  return QCoreApplication::translate("Tavrin", "\u201c%1\u201d").arg(displayName(name));
}

bool isFolder(const FileURL& url) {
  std::error_code missing;
  return std::filesystem::is_directory(url.path(), missing);
}

}  // namespace

bool SavePanelDialog::eventFilter(QObject* watched, QEvent* event) {
  // Return is taken before the field hands it on to the dialog, which would press whatever button
  // is the default one.
  if (watched == nameEdit_ && event->type() == QEvent::KeyPress &&
      isReturn(static_cast<const QKeyEvent&>(*event))) {
    confirm();
    return true;
  }
  return QDialog::eventFilter(watched, event);
}

void SavePanelDialog::showStart(const std::optional<FileURL>& directory) {
  FileURL folder = directory.value_or(FileURL::fileURLWithPath(currentAccount().homeDirectory));
  while (!isFolder(folder) && folder.path() != "/") folder = folder.deletingLastPathComponent();
  browser_->enterFolder(folder);
}

void SavePanelDialog::setTypes(const std::vector<std::string>& types,
                               SaveName::OtherTypes otherTypes) {
  const std::string stem = rules_.withoutType(nameInField());
  rules_ = SaveName(types, otherTypes);
  if (stem.empty()) return showState();
  showName(rules_.finished(stem));
}

void SavePanelDialog::showName(const std::string& bytes) {
  nameEdit_->setText(displayName(bytes));
  nameEdit_->setSelection(0, static_cast<int>(displayName(rules_.withoutType(bytes)).size()));
  shownName_ = bytes;
  showState();
}

std::string SavePanelDialog::nameInField() const {
  if (shownName_) return *shownName_;
  return QFile::encodeName(nameEdit_->text()).toStdString();
}

void SavePanelDialog::nameEdited() {
  shownName_.reset();
  browser_->clearSelection();
  showState();
}

void SavePanelDialog::selectionChanged() {
  const std::vector<int> rows = browser_->selectedRows();
  if (rows.empty() || browser_->model().isFolderRow(rows.front())) return;
  const FileURL url = browser_->model().urlOfRow(rows.front());
  showName(rules_.ofExistingItem(url.lastPathComponent()));
}

void SavePanelDialog::showState() {
  const std::string typed = nameInField();
  const std::string name = rules_.finished(typed);
  const QString problem = problemOf(name);
  saveButton_->setEnabled(problem.isEmpty() && !SaveName::problem(name));
  const bool isAsTyped = name == typed || SaveName::problem(name);
  hintLabel_->setText(
      !problem.isEmpty() || isAsTyped
          ? problem
          : QCoreApplication::translate("Tavrin", "The name will be %1.").arg(quoted(name)));
}

bool SavePanelDialog::isFolderInFolderShown(const std::string& name) const {
  const std::optional<int> row = browser_->model().rowOfName(name);
  return row && browser_->model().isFolderRow(*row);
}

QString SavePanelDialog::problemOf(const std::string& name) const {
  switch (SaveName::problem(name).value_or(SaveName::Problem::Empty)) {
    case SaveName::Problem::Separator:
      return QCoreApplication::translate("Tavrin", "A name cannot contain \u201c/\u201d.");
    case SaveName::Problem::Reserved:
      return QCoreApplication::translate("Tavrin", "This name is reserved.");
    case SaveName::Problem::TooLong:
      return QCoreApplication::translate("Tavrin", "This name is too long.");
    case SaveName::Problem::Empty:
      break;
  }
  if (!isFolderInFolderShown(name)) return {};
  return QCoreApplication::translate("Tavrin", "A folder has the name %1.").arg(quoted(name));
}

void SavePanelDialog::confirm() {
  const std::string name = rules_.finished(nameInField());
  if (SaveName::problem(name)) return;
  const auto folder = browser_->model().take(browser_->folder());
  struct stat status {};
  const bool isTaken =
      folder && ::fstatat(folder.value()->item(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
  struct stat target {};
  const bool isFolder = isTaken &&
                        ::fstatat(folder.value()->item(), name.c_str(), &target, 0) == 0 &&
                        S_ISDIR(target.st_mode);
  if (!folder || isFolder) {
    browser_->enterFolder(browser_->folder(), isFolder ? name : std::string());
    if (folder) return;
    hintLabel_->setText(QCoreApplication::translate(
        "Tavrin", "This folder cannot be opened, or has been replaced since it was shown."));
    return;
  }
  if (isTaken && !agreesToReplace(name)) return;
  picked_ = PickedDestination{
      FileURL::fileURLWithPath(appendingPathComponent(browser_->folder().path(), name)),
      {folder.value(), name},
      isTaken};
  accept();
}

bool SavePanelDialog::agreesToReplace(const std::string& name) {
  if (!mayAskTheUser()) return false;
  QMessageBox box(this);
  box.setObjectName(QStringLiteral("replaceQuestion"));
  box.setIcon(QMessageBox::Warning);
  box.setWindowTitle(QCoreApplication::applicationName());
  box.setTextFormat(Qt::PlainText);
  box.setText(QCoreApplication::translate("Tavrin", "%1 already exists. Do you want to replace it?")
                  .arg(quoted(name)));
  box.setInformativeText(
      QCoreApplication::translate("Tavrin", "Replacing it overwrites its contents."));
  const QPushButton* replace =
      box.addButton(QCoreApplication::translate("Tavrin", "Replace"), QMessageBox::DestructiveRole);
  QPushButton* cancel =
      box.addButton(QCoreApplication::translate("Tavrin", "Cancel"), QMessageBox::RejectRole);
  box.setDefaultButton(cancel);
  box.setEscapeButton(cancel);
  QObject::connect(qApp, &QCoreApplication::aboutToQuit, &box, &QDialog::reject);
  box.exec();
  return box.clickedButton() == replace;
}

}  // namespace tavrin
