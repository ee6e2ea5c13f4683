#include "settings/TemplateFiles.h"

#include <system_error>

#include "foundation/PathString.h"
#include "settings/SettingsKeys.h"

namespace tavrin {

bool isNameOfOneFile(std::string_view name) {
  if (name.empty() || name == "." || name == "..") return false;
  return name.find_first_of(std::string_view("/\0", 2)) == name.npos;
}

TemplateFiles::TemplateFiles(const Bundle& bundle, FileManager& fileManager)
    : bundle_(bundle), fileManager_(fileManager) {}

std::string TemplateFiles::nameOf(std::string_view displayName, std::string_view extension) {
  return std::string(displayName).append(".").append(extension);
}

Status TemplateFiles::add(const std::string& sourcePath) {
  const auto path = pathOf("copy", lastPathComponent(sourcePath));
  if (!path) return path.error();
  const Status folder = fileManager_.createDirectoryAtPath(
      deletingLastPathComponent(path.value()), FileManager::IntermediateDirectories::Create);
  if (!folder) return folder.error();
  return fileManager_.copyFileReplacingAtPath(fileManager_.resolvingSymlinksInPath(sourcePath),
                                              path.value());
}

Status TemplateFiles::rename(const std::string& name, const std::string& newName) {
  const auto path = pathOf("move", name);
  if (!path) return path.error();
  const auto newPath = pathOf("move", newName);
  if (!newPath) return newPath.error();
  return fileManager_.moveItemAtPath(path.value(), newPath.value());
}

Status TemplateFiles::remove(const std::string& name) {
  const auto path = pathOf("remove", name);
  if (!path) return path.error();
  return fileManager_.removeItemAtPath(path.value());
}

Result<std::string> TemplateFiles::pathOf(const std::string& operation, const std::string& name) {
  if (!isNameOfOneFile(name)) {
    return SystemError{operation, name, std::make_error_code(std::errc::invalid_argument)};
  }
  const auto container =
      fileManager_.containerPathForSecurityApplicationGroupIdentifier(bundle_.groupIdentifier());
  if (!container) {
    return SystemError{operation, name, std::make_error_code(std::errc::no_such_device_or_address)};
  }
  return appendingPathComponent(appendingPathComponent(*container, template_folder::createNewFile),
                                name);
}

}  // namespace tavrin
