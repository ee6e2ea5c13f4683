#include <sys/resource.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <string>
#include <string_view>

#include "MenuIcon.h"
#include "icons/Files.h"
#include "platform/linux/DefaultsReader.h"
#include "platform/linux/Identity.h"
#include "platform/linux/LinuxLog.h"
#include "platform/linux/LinuxUserDefaultsProvider.h"
#include "platform/linux/PrivateFolder.h"
#include "settings/SettingsKeys.h"

namespace tavrin {

namespace {

constexpr int wrongUsage = 2;

/// A drawing of a few bytes can ask for years of work.
constexpr rlim_t mostProcessorSeconds = 60;

constexpr const char* usage =
    "Usage: tavrin-menu-icons FOLDER\n"
    "\n"
    "Makes the small images that the menus in file managers show beside the folder icons of the\n"
    "settings. Each is called as the SHA-256 of its icon, with \".png\" behind. Images of icons "
    "that\n"
    "the settings no longer have are removed from the folder.\n";

void limitTime() {
  rlimit limit{};
  if (::getrlimit(RLIMIT_CPU, &limit) != 0) return;
  limit.rlim_cur = std::min(limit.rlim_cur, mostProcessorSeconds);
  ::setrlimit(RLIMIT_CPU, &limit);
}

void complain(const std::string& message) {
  icons::complain("tavrin-menu-icons", message);
}

/// Makes the image of one icon where it is missing.
void ensureImage(const PropertyList::Data& icon, const std::string& path) {
  std::string mistake;
  std::error_code unknown;
  if (std::filesystem::exists(path, unknown)) return;
  const auto png = menuIcon(icon, mistake);
  if (!png || !icons::replaceFile(path, *png, mistake)) complain(mistake);
}

bool isNameOfImage(const std::string& name) {
  static constexpr std::size_t digits = 64;
  return name.size() == digits + 4 && name.ends_with(".png") &&
         name.find_first_not_of("0123456789abcdef") == digits;
}

void removeOthers(const std::string& folder, const std::set<std::string>& names) {
  std::error_code failure;
  for (const auto& entry : std::filesystem::directory_iterator(folder, failure)) {
    const std::string name = entry.path().filename().string();
    if (isNameOfImage(name) && !names.contains(name)) {
      std::filesystem::remove(entry.path(), failure);
    }
  }
  if (failure) complain(folder + ": " + failure.message());
}

int makeImages(const std::string& folder) {
  LinuxLog log;
  if (std::filesystem::is_symlink(folder)) {
    complain(folder + " is a link");
    return EXIT_FAILURE;
  }
  if (const auto made = openPrivateFolder(folder); !made) {
    complain(made.error().describe());
    return EXIT_FAILURE;
  }
  LinuxUserDefaultsProvider provider(log);
  std::set<std::string> names;
  const auto suite = provider.openSuite(identity::groupIdentifier);
  for (const PropertyList& row : suite->arrayForKey(settings_key::arrOfCustomIcon)) {
    const PropertyList* icon = row.find(record_field::icon);
    const PropertyList::Data* data = icon == nullptr ? nullptr : icon->dataIfData();
    if (data == nullptr || data->empty()) continue;
    const auto [name, isNew] = names.insert(DefaultsReader::digestOf(*data) + ".png");
    if (isNew) ensureImage(*data, folder + "/" + *name);
  }
  removeOthers(folder, names);
  return EXIT_SUCCESS;
}

int run(int argumentCount, char** arguments) {
  const std::string_view word = argumentCount == 2 ? arguments[1] : "";
  if (word == "--help") return std::fputs(usage, stdout) < 0 ? EXIT_FAILURE : EXIT_SUCCESS;
  if (!word.starts_with('/')) {
    std::fputs(usage, stderr);
    return wrongUsage;
  }
  limitTime();
  if (startImageLibrary()) return makeImages(std::string(word));
  complain("the image library cannot be started");
  return EXIT_FAILURE;
}

}  // namespace

}  // namespace tavrin

int main(int argumentCount, char** arguments) {
  try {
    return tavrin::run(argumentCount, arguments);
  } catch (const std::exception& problem) {
    tavrin::complain(problem.what());
    return EXIT_FAILURE;
  }
}
