#include <array>
#include <string_view>
#include <utility>

#include "app/AppDelegate.h"
#include "foundation/ActionNames.h"

namespace tavrin {

namespace {

constexpr const char* codeEditorIdentifier = "com.microsoft.VSCode";
constexpr const char* codeEditor = "Visual Studio Code";
constexpr const char* codeEditorInsiders = "Visual Studio Code - Insiders";
constexpr const char* ideaEditor = "IntelliJ IDEA";
constexpr const char* sublimeEditor = "Sublime Text";
constexpr const char* emacsEditor = "Emacs";

void openFolderIn(AppDelegate& host, const ActionRequest& request, const std::string& appName) {
  host.openIn(request.stringForKey(request_key::path), appName);
}

void openFileIn(AppDelegate& host, const ActionRequest& request, const std::string& appName) {
  host.openFile(request.stringForKey(request_key::file), request.stringForKey(request_key::path),
                appName);
}

struct DispatchRow {
  const char* action;
  void (*handler)(AppDelegate& host, const ActionRequest& request);
};

using Host = AppDelegate;
using Request = ActionRequest;

constexpr std::array<DispatchRow, 25> dispatchTable = {{
    {action_name::createNewFile, [](Host& h, const Request& r) { h.createNewFile(r); }},
    {action_name::copyFilesTo, [](Host& h, const Request& r) { h.sendFilesTo(r, IsCopy::Yes); }},
    {action_name::moveFilesTo, [](Host& h, const Request& r) { h.sendFilesTo(r, IsCopy::No); }},
    {action_name::copyFilesToCustom,
     [](Host& h, const Request& r) { h.sendFilesToCustom(r, IsCopy::Yes); }},
    {action_name::moveFilesToCustom,
     [](Host& h, const Request& r) { h.sendFilesToCustom(r, IsCopy::No); }},
    {action_name::customIcon, [](Host& h, const Request& r) { h.customIcon(r); }},
    {action_name::openCommonPath, [](Host& h, const Request& r) { h.openCommonPath(r); }},
    {action_name::cutSelectedFiles, [](Host& h, const Request& r) { h.cutSelectedFiles(r); }},
    {action_name::pasteSelectedFiles, [](Host& h, const Request& r) { h.pasteSelectedFiles(r); }},
    {action_name::hiddenSelectedFiles,
     [](Host& h, const Request& r) { h.hiddenSelectedFiles(r, IsHidden::Yes); }},
    {action_name::unHiddenSelectedFiles,
     [](Host& h, const Request& r) { h.hiddenSelectedFiles(r, IsHidden::No); }},
    {action_name::deleteDirectlySelectedFiles,
     [](Host& h, const Request& r) { h.deleteDirectlySelectedFiles(r); }},
    {action_name::hiddenAllFilesInPath,
     [](Host& h, const Request& r) { h.hiddenAllFilesInPath(r, IsHidden::Yes); }},
    {action_name::unhiddenAllFilesInPath,
     [](Host& h, const Request& r) { h.hiddenAllFilesInPath(r, IsHidden::No); }},
    {action_name::openInVSCode,
     [](Host& h, const Request& r) { openFolderIn(h, r, h.codeEditorName()); }},
    {action_name::openInIDEA, [](Host& h, const Request& r) { openFolderIn(h, r, ideaEditor); }},
    {action_name::openInSublimeText,
     [](Host& h, const Request& r) { openFolderIn(h, r, sublimeEditor); }},
    {action_name::openInEmacs, [](Host& h, const Request& r) { openFolderIn(h, r, emacsEditor); }},
    {action_name::openFileInVSCode,
     [](Host& h, const Request& r) { openFileIn(h, r, h.codeEditorName()); }},
    {action_name::openFileInIDEA, [](Host& h, const Request& r) { openFileIn(h, r, ideaEditor); }},
    {action_name::openFileInSublimeText,
     [](Host& h, const Request& r) { openFileIn(h, r, sublimeEditor); }},
    {action_name::openFileInEmacs,
     [](Host& h, const Request& r) { openFileIn(h, r, emacsEditor); }},
    {action_name::pinbySnapvane, [](Host& h, const Request& r) { h.pinbySnapvane(r); }},
    {action_name::imageToIconSetForMac,
     [](Host& h, const Request& r) { h.imageToIconSetForMac(r); }},
    {action_name::imageToIconSetForiOS,
     [](Host& h, const Request& r) { h.imageToIconSetForiOS(r); }},
}};

}  // namespace

std::optional<ActionRequest> AppDelegate::readRequest(const std::string& fileName) const {
  const auto ignored = [&](const SystemError& cause) {
    platform_.log.write("request " + fileName + " ignored: " + cause.describe());
    return std::nullopt;
  };
  auto content = platform_.propertyLists.propertyListWithContentsOfFile(fileName);
  if (!content) return ignored(content.error());
  auto request = ActionRequest::requestWithPropertyList(std::move(content).value());
  if (!request) return ignored(request.error());
  return std::move(request).value();
}

bool AppDelegate::applicationOpenFile(const std::string& fileName) {
  opened_ = true;
  const auto request = readRequest(fileName);
  if (!request) return true;
  const std::string action = request->stringForKey(request_key::action).value_or("");
  for (const DispatchRow& row : dispatchTable) {
    if (action != row.action) continue;
    const ActionInHand inHand(platform_.log, actionInHand_, action);
    row.handler(*this, *request);
    return true;
  }
  return true;
}

std::string AppDelegate::codeEditorName() const {
  const bool installed =
      isApplicationInstalled(codeEditorIdentifier, [this](const std::string& identifier) {
        return platform_.launchServices.applicationsForBundleIdentifier(identifier).size();
      });
  return installed ? codeEditor : codeEditorInsiders;
}

}  // namespace tavrin
