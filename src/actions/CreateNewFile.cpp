#include <utility>

#include "app/AppDelegate.h"
#include "foundation/PathString.h"
#include "settings/SettingsKeys.h"

namespace tavrin {

namespace {

constexpr int panelLevel = 1;
// Others may take a free name before it is used; this often in a row, only a fault does.
constexpr int mostFreeNames = 100;

std::optional<std::string> textOf(const PropertyList* rule, const char* field) {
  const PropertyList* value = rule == nullptr ? nullptr : rule->find(field);
  const std::string* text = value == nullptr ? nullptr : value->stringIfString();
  return text == nullptr ? std::nullopt : std::optional(*text);
}

/// The enabled rule at a zero-based position among the enabled ones.
const PropertyList* enabledRuleAt(const PropertyList::Array& rules, std::int64_t position) {
  std::int64_t counter = 0;
  for (const PropertyList& rule : rules) {
    if (!rule.boolForKey(record_field::enable)) continue;
    if (counter == position) return &rule;
    ++counter;
  }
  return nullptr;
}

const PropertyList* ruleOfExtension(const PropertyList::Array& rules,
                                    const std::string& extension) {
  for (const PropertyList& rule : rules) {
    if (textOf(&rule, record_field::extension) == extension) return &rule;
  }
  return nullptr;
}

std::vector<std::string> extensionsOf(const PropertyList::Array& rules) {
  std::vector<std::string> extensions;
  for (const PropertyList& rule : rules) {
    auto extension = textOf(&rule, record_field::extension);
    if (extension && !extension->empty()) extensions.push_back(*std::move(extension));
  }
  return extensions;
}

}  // namespace

void AppDelegate::createNewFile(const ActionRequest& request) {
  const auto folder = request.stringForKey(request_key::path);
  if (!folder || folder->empty()) return creationFailed("no folder given");
  const auto rules = standardUserDefaults_->arrayForKey(settings_key::arrOfCreateNewFile);
  const PropertyList* rule = enabledRuleAt(rules, request.tag());
  const auto extension = textOf(rule, record_field::extension);
  if (extension == "") return createFileOfChosenFormat(*folder, rules);
  const std::string name = platform_.bundle.localizedString("untitled");
  createFile({*folder, *folder + "/" + name + "." + descriptionOf(extension),
              templateName(textOf(rule, record_field::displayName), extension),
              NewFile::Naming::FirstFree});
}

void AppDelegate::createFileOfChosenFormat(const std::string& folder,
                                           const PropertyList::Array& rules) {
  savePanel_ = makeFormatPanel(folder, extensionsOf(rules));
  if (savePanel_->runModal() != SavePanel::Response::OK) return;
  const auto url = savePanel_->url();
  if (!url) return;
  const std::string extension = pathExtension(url->path());
  const auto displayName = textOf(ruleOfExtension(rules, extension), record_field::displayName);
  createFile({folder, url->path(), templateName(displayName, extension),
              savePanel_->mayReplace() ? NewFile::Naming::Replacing : NewFile::Naming::AsItStands});
}

std::shared_ptr<SavePanel> AppDelegate::makeFormatPanel(const std::string& folder,
                                                        std::vector<std::string> extensions) {
  const Bundle& bundle = platform_.bundle;
  offeredExtensions_ = std::move(extensions);
  auto panel = platform_.panels.savePanel();
  panel->setLevel(panelLevel);
  panel->setAllowsOtherFileTypes(false);
  panel->setTitle(bundle.localizedString("Create New File"));
  panel->setDirectoryURL(FileURL::fileURLWithPath(folder));
  panel->setNameFieldStringValue(bundle.localizedString("untitled"));
  if (!offeredExtensions_.empty()) panel->setAllowedFileTypes({offeredExtensions_.front()});
  panel->validateVisibleColumns();
  if (offeredExtensions_.empty()) return panel;
  panel->setAccessoryView({bundle.localizedString("Format:"), offeredExtensions_,
                           [this](std::size_t index) { buttonPressed(index); }});
  return panel;
}

void AppDelegate::buttonPressed(std::size_t indexOfSelectedItem) {
  if (!savePanel_ || indexOfSelectedItem >= offeredExtensions_.size()) return;
  savePanel_->setAllowedFileTypes({offeredExtensions_[indexOfSelectedItem]});
  savePanel_->validateVisibleColumns();
}

std::string AppDelegate::templateName(const std::optional<std::string>& displayName,
                                      const std::optional<std::string>& extension) {
  return descriptionOf(displayName) + "." + descriptionOf(extension);
}

PropertyList::Data AppDelegate::contentsOfTemplate(const std::string& name) {
  const auto container = platform_.fileManager.containerPathForSecurityApplicationGroupIdentifier(
      platform_.bundle.groupIdentifier());
  if (!container) {
    logFailure("no templates: the group has no container");
    return {};
  }
  auto contents = platform_.fileManager.contentsAtPath(
      appendingPathComponent(*container, template_folder::createNewFile) + "/" + name);
  if (contents) return std::move(contents).value();
  const bool isMissing = contents.error().code == std::errc::no_such_file_or_directory;
  if (!isMissing) logFailure("no template: " + contents.error().describe());
  return {};
}

void AppDelegate::createFile(const NewFile& file) {
  const bool granted = fileAccess_->accessFilePath(file.folder, PersistPermission::Yes, [&] {
    const auto created = writeNewFile(file);
    created ? fileCreated(created.value(), file.folder)
            : creationFailed(created.error().describe());
  });
  if (!granted) logFailure("no access to " + file.folder);
}

Result<std::string> AppDelegate::writeNewFile(const NewFile& file) {
  const PropertyList::Data contents = contentsOfTemplate(file.templateName);
  const auto replace = file.naming == NewFile::Naming::Replacing ? FileManager::Replace::Yes
                                                                 : FileManager::Replace::No;
  int names = file.naming == NewFile::Naming::FirstFree ? mostFreeNames : 1;
  while (true) {
    std::string path = file.path;
    if (file.naming == NewFile::Naming::FirstFree) {
      path = uniquePathForPath(path, [this](const std::string& item) { return itemExists(item); });
    }
    const Status created = platform_.fileManager.createFileAtPath(path, contents, replace);
    if (created) return path;
    if (--names == 0 || created.error().code != std::errc::file_exists) return created.error();
  }
}

void AppDelegate::fileCreated(const std::string& path, const std::string& folder) {
  if (folder != homePath() + "/Desktop") platform_.workspace.selectFile(path, folder);
  if (standardUserDefaults_->boolForKey(settings_key::enableAutoOpenAfterCreateNewFile)) {
    platform_.workspace.openFile(path);
  }
  playSoundOfNewFile(successSound_);
}

void AppDelegate::creationFailed(const std::string& reason) {
  logFailure(reason);
  playSoundOfNewFile(failureSound_);
}

void AppDelegate::playSoundOfNewFile(const std::unique_ptr<Sound>& sound) {
  const bool wanted = standardUserDefaults_->boolForKey(settings_key::soundTipsOfNewFile);
  if (wanted && sound) sound->play();
}

}  // namespace tavrin
