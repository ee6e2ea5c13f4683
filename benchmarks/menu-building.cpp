// What the menu of a file manager costs: opening the suite, the look for changes before each menu,
// and the way from the call to the tree of items, for short and long lists, for one and for many
// selected items. Prints medians, in milliseconds.

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "menu/MenuBuilding.h"
#include "platform/linux/DefaultsReader.h"
#include "platform/linux/Identity.h"
#include "platform/linux/LinuxDirectories.h"
#include "platform/linux/LinuxLog.h"
#include "platform/linux/LinuxUserDefaultsProvider.h"
#include "platform/linux/TextTable.h"
#include "settings/SettingsKeys.h"

namespace tavrin {

namespace {

using Clock = std::chrono::steady_clock;
using Rows = PropertyList::Array;
using Row = PropertyList::Dictionary;

constexpr int rounds = 31;

class Selection final : public SelectedItems {
 public:
  explicit Selection(std::size_t count) {
    for (std::size_t index = 0; index < count; ++index) {
      uris_.push_back("file:///home/someone/Documents/a%20folder/picture-" + std::to_string(index) +
                      ".png");
    }
  }
  std::size_t count() const override { return uris_.size(); }
  std::string uri(std::size_t index) const override { return uris_[index]; }
  bool isFolder(std::size_t) const override { return false; }
  std::string contentType(std::size_t) const override { return "image/png"; }

 private:
  std::vector<std::string> uris_;
};

double medianMilliseconds(const std::function<void()>& work) {
  std::vector<double> times;
  for (int round = 0; round < rounds; ++round) {
    const auto start = Clock::now();
    work();
    times.push_back(std::chrono::duration<double, std::milli>(Clock::now() - start).count());
  }
  std::nth_element(times.begin(), times.begin() + rounds / 2, times.end());
  return times[rounds / 2];
}

Row folder(std::size_t number) {
  return {{"enable", 1}, {"realPath", "~/Folder " + std::to_string(number)}, {"displayName", ""}};
}

Row image(std::size_t number) {
  return {{"enable", 1},
          {"displayName", "Image " + std::to_string(number)},
          {"icon", PropertyList::Data(100'000, static_cast<std::uint8_t>(number))}};
}

/// Lists of so many rows in all, a fifth each.
void store(LinuxUserDefaults& suite, std::size_t rowCount) {
  Rows files;
  Rows folders;
  Rows images;
  Rows commands;
  const char* others[] = {"Cut", "Copy Path", "Delete directly", "Open in VSCode"};
  for (std::size_t number = 0; number < rowCount / 5; ++number) {
    files.emplace_back(Row{{"enable", 1},
                           {"displayName", "Kind " + std::to_string(number)},
                           {"extension", "txt"},
                           {"enableMainMenu", 0}});
    folders.emplace_back(folder(number));
    images.emplace_back(image(number));
    commands.emplace_back(
        Row{{"enable", 1}, {"Action", others[number % 4]}, {"displayName", others[number % 4]}});
  }
  Row values{{settings_key::arrOfCreateNewFile, files},
             {settings_key::arrOfCopyFilesTo, folders},
             {settings_key::arrOfCommonPath, folders},
             {settings_key::arrOfCustomIcon, images},
             {settings_key::arrOfOthers, commands}};
  for (const char* key : mirroredSwitches) values.emplace(key, true);
  suite.setObjects(values);
  suite.synchronize();
}

void measure(std::size_t rowCount, std::size_t itemCount) {
  LinuxLog log;
  LinuxUserDefaultsProvider provider(log);
  const auto suite = provider.openSuite(identity::groupIdentifier);
  store(*suite, rowCount);
  const std::string folder = userConfigDirectory() + "/" + identity::groupIdentifier;
  const MenuEnvironment environment{
      currentAccount().homeDirectory,
      "/container",
      "/resources",
      [](const std::string& path) { return ::access(path.c_str(), R_OK) == 0; },
      translatedText,
      [](const PropertyList& icon) { return DefaultsReader::digestOf(*icon.dataIfData()); },
      false};
  MenuSettings settings;
  const double opening = medianMilliseconds([&] {
    DefaultsReader reader(folder, log);
    settings = readMenuSettings(*reader.read(menuSettingsKeys), environment);
  });
  DefaultsReader reader(folder, log);
  static_cast<void>(reader.read(menuSettingsKeys));
  const double test = medianMilliseconds([&] { static_cast<void>(reader.hasChanged()); });
  const Selection selection(itemCount);
  const double items = medianMilliseconds([&] { menuForItems(settings, environment, selection); });
  const double inView =
      medianMilliseconds([&] { menuForFolder(settings, environment, "file:///home/someone"); });
  std::printf("%6zu %9zu %10.3f %10.4f %10.3f %10.3f\n", rowCount, itemCount, opening, test, items,
              inView);
}

}  // namespace

}  // namespace tavrin

int main() {
  std::string scratch = std::filesystem::temp_directory_path() / "menu-building-XXXXXX";
  if (::mkdtemp(scratch.data()) == nullptr) return EXIT_FAILURE;
  ::setenv("XDG_CONFIG_HOME", scratch.c_str(), 1);  // NOLINT(concurrency-mt-unsafe)
  std::printf("%6s %9s %10s %10s %10s %10s\n", "rows", "items", "open", "look", "items' menu",
              "folder's");
  for (const std::size_t rows : {10U, 1000U}) {
    for (const std::size_t items : {1U, 100'000U}) tavrin::measure(rows, items);
  }
  std::filesystem::remove_all(scratch);
}
