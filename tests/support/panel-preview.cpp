// Shows one of the program's windows, to be looked at:
//   panel-preview access PATH | folders PATH | save PATH [dark] | alert

#include <QApplication>
#include <QPalette>
#include <cstdio>
#include <string>

#include "platform/linux/ApplicationIcon.h"
#include "platform/linux/LinuxAlert.h"
#include "platform/linux/panel/LinuxOpenPanel.h"
#include "sandbox/AppSandboxFileAccessOpenSavePanelDelegate.h"

namespace {

using tavrin::FileURL;

void printPicked(const tavrin::OpenPanel& panel) {
  for (const FileURL& url : panel.urls()) std::printf("%s\n", url.absoluteString().c_str());
}

int showAccessPanel(const std::string& path) {
  const FileURL url = FileURL::fileURLWithPath(path);
  const tavrin::AppSandboxFileAccessOpenSavePanelDelegate delegate(url);
  tavrin::LinuxPanelProvider provider([](const auto&) {}, {});
  const auto panel = provider.openPanel();
  panel->setCanChooseFiles(true);
  panel->setCanChooseDirectories(true);
  panel->setPrompt("Authorization");
  panel->setTitle("Allow Access");
  panel->setDirectoryURL(url);
  panel->setDelegate(&delegate);
  panel->setAccessoryText(
      "\n1. Tavrin does not have permission to read and write this folder. please click "
      "\"Authorization\". \n2. It is recommended that the authority root directory, no "
      "authorization needed in the future.\n");
  const bool isPicked = panel->runModal() == tavrin::OpenPanel::Response::OK;
  printPicked(*panel);
  return isPicked ? 0 : 1;
}

int showFolderChooser(const std::string& path) {
  tavrin::LinuxPanelProvider provider([](const auto&) {}, {});
  const auto panel = provider.openPanel();
  panel->setCanChooseFiles(false);
  panel->setCanChooseDirectories(true);
  panel->setPrompt("OK");
  panel->setDirectoryURL(FileURL::fileURLWithPath(path));
  panel->beginSheetModalForWindow(nullptr, [&](tavrin::OpenPanel::Response response) {
    printPicked(*panel);
    QApplication::exit(response == tavrin::OpenPanel::Response::OK ? 0 : 1);
  });
  return QApplication::exec();
}

int showSavePanel(const std::string& path) {
  tavrin::LinuxPanelProvider provider({}, {});
  const auto panel = provider.savePanel();
  const std::vector<std::string> formats = {"txt", "md", "odt", "html"};
  panel->setTitle("Create New File");
  panel->setDirectoryURL(FileURL::fileURLWithPath(path));
  panel->setNameFieldStringValue("untitled");
  panel->setAllowedFileTypes({formats.front()});
  panel->setAccessoryView({"Format:", formats, [&](std::size_t index) {
                             panel->setAllowedFileTypes({formats[index]});
                             panel->validateVisibleColumns();
                           }});
  const bool isPicked = panel->runModal() == tavrin::SavePanel::Response::OK;
  if (isPicked) std::printf("%s\n", panel->url()->absoluteString().c_str());
  return isPicked ? 0 : 1;
}

int showAlert() {
  tavrin::LinuxAlert alert;
  alert.setAlertStyle(tavrin::Alert::Style::Warning);
  alert.setInformativeText(
      "Tavrin is not need to auto starts when login,and will be removed from the login item.");
  alert.addButtonWithTitle("OK");
  alert.addButtonWithTitle("Cancel");
  std::printf("%d\n", alert.runModal());
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  QApplication::setApplicationName(QStringLiteral("Tavrin"));
  tavrin::ensureApplicationIcon();
  const std::string what = argc > 1 ? argv[1] : "access";
  if (what == "folders") return showFolderChooser(argc > 2 ? argv[2] : "/usr");
  if (argc > 3)
    QApplication::setPalette(QPalette(QColor(0x35, 0x36, 0x3a), QColor(0x26, 0x27, 0x2b)));
  if (what == "save") return showSavePanel(argc > 2 ? argv[2] : "/usr");
  if (what == "alert") return showAlert();
  return showAccessPanel(argc > 2 ? argv[2] : "/usr/share");
}
