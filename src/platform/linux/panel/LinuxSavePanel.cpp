#include "platform/linux/panel/LinuxSavePanel.h"

#include <QCoreApplication>
#include <utility>

#include "platform/linux/DisplayText.h"
#include "platform/linux/QtWindows.h"

namespace tavrin {

LinuxSavePanel::LinuxSavePanel(GrantPlace grantPlace) : grantPlace_(std::move(grantPlace)) {}

void LinuxSavePanel::setAllowsOtherFileTypes(bool flag) {
  options_.otherTypes = flag ? SaveName::OtherTypes::Allowed : SaveName::OtherTypes::Refused;
}

void LinuxSavePanel::setTitle(const std::string& title) {
  options_.title = displayText(title);
}

void LinuxSavePanel::validateVisibleColumns() {
  if (dialog_ != nullptr) dialog_->setTypes(options_.types, options_.otherTypes);
}

SavePanel::Response LinuxSavePanel::runModal() {
  picked_.reset();
  if (!mayAskTheUser()) return Response::Cancel;
  SavePanelDialog dialog(options_);
  dialog_ = &dialog;
  dialog.setWindowModality(Qt::ApplicationModal);
  QObject::connect(qApp, &QCoreApplication::aboutToQuit, &dialog, &QDialog::reject);
  bringToFront(dialog);
  dialog.exec();
  dialog_ = nullptr;
  if (dialog.result() != QDialog::Accepted || !dialog.picked()) return Response::Cancel;
  picked_ = dialog.picked();
  if (grantPlace_) grantPlace_(picked_->place);
  return Response::OK;
}

std::optional<FileURL> LinuxSavePanel::url() const {
  return picked_ ? std::optional(picked_->url) : std::nullopt;
}

}  // namespace tavrin
