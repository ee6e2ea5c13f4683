#include "platform/linux/LinuxLoginItems.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>

#include "foundation/PathString.h"
#include "foundation/Result.h"
#include "platform/linux/DesktopEntry.h"
#include "platform/linux/GLibPointers.h"
#include "platform/linux/Identity.h"
#include "platform/linux/LinuxDirectories.h"

namespace tavrin {

namespace {

constexpr std::uintmax_t maximumEntrySize = 1U << 20U;

std::string environmentText(const char* name, const char* fallback) {
  // Nothing in this program changes the environment.
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr || *value == '\0' ? fallback : value;
}

std::string userFolder() {
  return appendingPathComponent(userConfigDirectory(), "autostart");
}

/// The system's folders, the most important first.
std::vector<std::string> systemFolders() {
  std::vector<std::string> folders;
  const std::string list = environmentText("XDG_CONFIG_DIRS", "/etc/xdg");
  for (std::size_t start = 0; start <= list.size();) {
    const std::size_t end = std::min(list.find(':', start), list.size());
    const std::string folder = list.substr(start, end - start);
    if (!folder.empty() && folder.front() == '/') {
      folders.push_back(appendingPathComponent(folder, "autostart"));
    }
    start = end + 1;
  }
  return folders;
}

bool isRegularFile(const std::string& path) {
  std::error_code unreadable;
  return std::filesystem::is_regular_file(path, unreadable);
}

/// The entries' files by name; the first folder that has a name wins.
std::map<std::string, std::string> entryFiles() {
  std::vector<std::string> folders = systemFolders();
  folders.insert(folders.begin(), userFolder());
  std::map<std::string, std::string> files;
  for (const std::string& folder : folders) {
    std::error_code absent;
    std::filesystem::directory_iterator entries(folder, absent);
    for (; !absent && entries != std::filesystem::directory_iterator(); entries.increment(absent)) {
      const std::string name = entries->path().filename().string();
      if (pathExtension(name) == "desktop") files.emplace(name, entries->path().string());
    }
  }
  return files;
}

std::optional<DesktopEntry> readEntry(const std::string& path) {
  // Anything but a regular file of a sensible size could keep the reader waiting.
  std::error_code unreadable;
  if (!isRegularFile(path) || std::filesystem::file_size(path, unreadable) > maximumEntrySize) {
    return std::nullopt;
  }
  std::ifstream file(path, std::ios::binary);
  const std::string contents{std::istreambuf_iterator<char>(file), {}};
  return DesktopEntry::parse(contents);
}

}  // namespace

LinuxLoginItems::LinuxLoginItems(Log& log) : log_(log) {}

std::vector<LoginItems::Item> LinuxLoginItems::snapshot() const {
  const std::string desktop = environmentText("XDG_CURRENT_DESKTOP", "");
  std::vector<Item> items;
  for (const auto& [name, path] : entryFiles()) {
    const std::optional<DesktopEntry> entry = readEntry(path);
    if (entry && entry->isStartedIn(desktop)) items.push_back({name, entry->program()});
  }
  return items;
}

void LinuxLoginItems::insertLast(const std::string& programPath) {
  writeUserEntry(std::string(identity::applicationId) + ".desktop",
                 autostartEntry(identity::displayName, programPath));
}

void LinuxLoginItems::remove(const Item& item) {
  for (const std::string& folder : systemFolders()) {
    if (!isRegularFile(appendingPathComponent(folder, item.reference))) continue;
    writeUserEntry(item.reference, hiddenAutostartEntry(deletingPathExtension(item.reference)));
    return;
  }
  const std::string path = appendingPathComponent(userFolder(), item.reference);
  if (::unlink(path.c_str()) == 0 || errno == ENOENT) return;
  log_.write(SystemError{"remove", path, {errno, std::generic_category()}}.describe());
}

void LinuxLoginItems::writeUserEntry(const std::string& fileName, const std::string& contents) {
  const std::string folder = userFolder();
  if (g_mkdir_with_parents(folder.c_str(), S_IRWXU) != 0) {
    log_.write(SystemError{"create folder", folder, {errno, std::generic_category()}}.describe());
    return;
  }
  const std::string path = appendingPathComponent(folder, fileName);
  const auto whole = static_cast<GFileSetContentsFlags>(G_FILE_SET_CONTENTS_CONSISTENT |
                                                        G_FILE_SET_CONTENTS_DURABLE);
  GLibError error;
  if (g_file_set_contents_full(path.c_str(), contents.data(), static_cast<gssize>(contents.size()),
                               whole, 0644, error.slot()) == FALSE) {
    log_.write("write " + path + ": " + error.message());
  }
}

}  // namespace tavrin
