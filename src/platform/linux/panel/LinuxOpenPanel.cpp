#include "platform/linux/panel/LinuxOpenPanel.h"

#include <QCoreApplication>
#include <utility>

#include "platform/linux/DisplayText.h"
#include "platform/linux/QtWindows.h"

namespace tavrin {

LinuxOpenPanel::LinuxOpenPanel(GrantPicked grantPicked) : grantPicked_(std::move(grantPicked)) {}

void LinuxOpenPanel::setPrompt(const std::string& prompt) {
  options_.prompt = displayText(prompt);
}

void LinuxOpenPanel::setTitle(const std::string& title) {
  options_.title = displayText(title);
}

void LinuxOpenPanel::setMessage(const std::string& message) {
  options_.message = displayText(message);
}

void LinuxOpenPanel::setShowsHiddenFiles(bool flag) {
  options_.hiddenFiles = flag ? HiddenFiles::Include : HiddenFiles::LeaveOut;
}

void LinuxOpenPanel::setAccessoryText(const std::string& text) {
  options_.accessoryText = displayText(text);
}

OpenPanel::Response LinuxOpenPanel::runModal() {
  urls_.clear();
  if (!mayAskTheUser()) return Response::Cancel;
  OpenPanelDialog dialog(options_, nullptr);
  dialog.setWindowModality(Qt::ApplicationModal);
  QObject::connect(qApp, &QCoreApplication::aboutToQuit, &dialog, &QDialog::reject);
  bringToFront(dialog);
  dialog.exec();
  return takeResult(dialog);
}

void LinuxOpenPanel::beginSheetModalForWindow(Window* window,
                                              std::function<void(Response)> completion) {
  urls_.clear();
  if (!mayAskTheUser()) return completion(Response::Cancel);
  auto* dialog = new OpenPanelDialog(options_, widgetOfWindow(window));
  dialog->setAttribute(Qt::WA_DeleteOnClose);
  if (window != nullptr) dialog->setWindowModality(Qt::WindowModal);
  QObject::connect(qApp, &QCoreApplication::aboutToQuit, dialog, &QDialog::reject);
  // The connection holds the panel and the completion; both go with the dialog.
  QObject::connect(
      dialog, &QDialog::finished, dialog,
      [panel = shared_from_this(), dialog, completion = std::move(completion)]() mutable {
        const auto endedPanel = std::move(panel);
        const auto endedCompletion = std::exchange(completion, nullptr);
        if (!endedPanel) return;
        const Response response = endedPanel->takeResult(*dialog);
        if (endedCompletion) endedCompletion(response);
      });
  bringToFront(*dialog);
}

OpenPanel::Response LinuxOpenPanel::takeResult(const OpenPanelDialog& dialog) {
  if (dialog.result() != QDialog::Accepted) return Response::Cancel;
  for (const PickedItem& picked : dialog.picked()) {
    if (grantPicked_) grantPicked_(picked.item);
    urls_.push_back(picked.url);
  }
  return Response::OK;
}

LinuxPanelProvider::LinuxPanelProvider(GrantPicked grantPicked, GrantPlace grantPlace)
    : grantPicked_(std::move(grantPicked)), grantPlace_(std::move(grantPlace)) {}

std::shared_ptr<OpenPanel> LinuxPanelProvider::openPanel() {
  return std::make_shared<LinuxOpenPanel>(grantPicked_);
}

std::shared_ptr<SavePanel> LinuxPanelProvider::savePanel() {
  return std::make_shared<LinuxSavePanel>(grantPlace_);
}

}  // namespace tavrin
