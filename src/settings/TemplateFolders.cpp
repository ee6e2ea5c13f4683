#include "settings/TemplateFolders.h"

#include <optional>
#include <span>
#include <string_view>
#include <system_error>
#include <utility>

#include "foundation/PathString.h"
#include "settings/SettingsKeys.h"
#include "settings/TemplateFiles.h"

namespace tavrin {

namespace {

constexpr std::string_view imageSuffix = ".png";

std::string imageName(std::string_view name) {
  return std::string(name).append(imageSuffix);
}

bool failedWith(const Status& status, std::errc cause) {
  return !status && status.error().code == cause;
}

}  // namespace

/// One pass over the folders; remembers why the first step failed that should not have.
class TemplateFolders::Preparation {
 public:
  Preparation(FileManager& fileManager, std::string resources, std::string container)
      : fileManager_(fileManager),
        resources_(std::move(resources)),
        container_(std::move(container)) {}

  void fillTemplates(const PropertyList::Array& records) {
    const std::string folder = appendingPathComponent(container_, template_folder::createNewFile);
    if (!createFolder(folder)) return;
    for (const PropertyList& record : records) {
      if (record.isDictionary()) copyTemplate(record, folder);
    }
  }

  void rebuildImages(const char* folderName, std::span<const std::string_view> names) {
    const std::string folder = appendingPathComponent(container_, folderName);
    const Status removed = fileManager_.removeItemAtPath(folder);
    if (!failedWith(removed, std::errc::no_such_file_or_directory)) note(removed);
    if (!createFolder(folder)) return;
    for (const std::string_view name : names) copyResource(imageName(name), folder);
  }

  const std::optional<SystemError>& firstFailure() const { return firstFailure_; }

 private:
  void copyTemplate(const PropertyList& record, const std::string& folder) {
    const std::string extension = record.stringForKey(record_field::extension);
    copyResource(imageName(extension), folder);
    if (extension.empty()) return;
    copyResource(TemplateFiles::nameOf(record.stringForKey(record_field::displayName), extension),
                 folder);
  }

  void copyResource(const std::string& name, const std::string& folder) {
    if (!isNameOfOneFile(name)) return;
    const std::string destination = appendingPathComponent(folder, name);
    if (fileManager_.fileExistsAtPath(destination)) return;
    const Status copied =
        fileManager_.copyItemAtPath(appendingPathComponent(resources_, name), destination);
    if (failedWith(copied, std::errc::no_such_file_or_directory)) return;
    if (failedWith(copied, std::errc::file_exists)) return;
    note(copied);
  }

  bool createFolder(const std::string& folder) {
    const Status created =
        fileManager_.createDirectoryAtPath(folder, FileManager::IntermediateDirectories::Create);
    note(created);
    return static_cast<bool>(created);
  }

  void note(const Status& status) {
    if (!status && !firstFailure_) firstFailure_ = status.error();
  }

  FileManager& fileManager_;
  std::string resources_;
  std::string container_;
  std::optional<SystemError> firstFailure_;
};

TemplateFolders::TemplateFolders(const Bundle& bundle, FileManager& fileManager, Log& log)
    : bundle_(bundle), fileManager_(fileManager), log_(log) {}

void TemplateFolders::prepare(const PropertyList::Array& createNewFileRecords) {
  const auto container =
      fileManager_.containerPathForSecurityApplicationGroupIdentifier(bundle_.groupIdentifier());
  if (!container) {
    log_.write("the folders of templates cannot be made: the group has no container");
    return;
  }
  Preparation preparation(fileManager_, bundle_.resourcePath(), *container);
  preparation.fillTemplates(createNewFileRecords);
  preparation.rebuildImages(template_folder::functionIcon, functionIconNames);
  preparation.rebuildImages(template_folder::othersMenuItemIcon, commandIconNames);
  if (const auto& failure = preparation.firstFailure()) {
    log_.write("the folders of templates are incomplete: " + failure->describe());
  }
}

}  // namespace tavrin
