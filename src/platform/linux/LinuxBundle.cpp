#include "platform/linux/LinuxBundle.h"

#include <filesystem>
#include <utility>

#include "foundation/PathString.h"
#include "platform/linux/Identity.h"
#include "platform/linux/LinuxDirectories.h"
#include "platform/linux/TextTable.h"

namespace tavrin {

LinuxBundle::LinuxBundle() : LinuxBundle(programDirectory()) {
  bindInstalledTextTable();
}

LinuxBundle::LinuxBundle(std::string programFolder)
    : programFolder_(std::move(programFolder)), account_(currentAccount()) {}

std::string LinuxBundle::bundlePath() const {
  std::error_code ignored;
  return std::filesystem::read_symlink("/proc/self/exe", ignored).string();
}

std::string LinuxBundle::resourcePath() const {
  return standardizingPath(appendingPathComponent(programFolder_, identity::resourceFolder));
}

std::optional<std::string> LinuxBundle::pathForResource(const std::string& name,
                                                        const std::string& type) const {
  std::string fileName = name;
  if (!type.empty()) fileName += "." + type;
  std::string path = appendingPathComponent(resourcePath(), fileName);
  std::error_code unreadable;
  if (!std::filesystem::is_regular_file(path, unreadable)) return std::nullopt;
  return path;
}

std::string LinuxBundle::builtInPlugInsPath() const {
  return standardizingPath(appendingPathComponent(programFolder_, identity::moduleFolder));
}

std::optional<std::string> LinuxBundle::objectForInfoDictionaryKey(const std::string& key) const {
  if (key == "CFBundleDisplayName" || key == "CFBundleName") return identity::displayName;
  if (key == "CFBundleShortVersionString") return identity::version;
  return std::nullopt;
}

std::string LinuxBundle::localizedString(const std::string& key) const {
  return translatedText(key);
}

std::string LinuxBundle::groupIdentifier() const {
  return identity::groupIdentifier;
}

Account LinuxBundle::account() const {
  return account_;
}

}  // namespace tavrin
