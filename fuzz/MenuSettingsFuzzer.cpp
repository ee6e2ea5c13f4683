#include <algorithm>
#include <set>
#include <string_view>

#include "app/ActionRequest.h"
#include "foundation/FileURL.h"
#include "foundation/Utf8.h"
#include "fuzz/HostileValues.h"
#include "fuzz/Require.h"
#include "fuzz/SamePropertyList.h"
#include "menu/MenuBuilding.h"
#include "menu/MenuSettings.h"
#include "settings/SettingsKeys.h"

namespace tavrin::fuzz {

namespace {

using Identifiers = std::set<std::string, std::less<>>;

struct Item {
  std::string uri;
  bool isFolder;
  std::string contentType;
};

class Selection final : public SelectedItems {
 public:
  explicit Selection(Input& input) {
    const auto count = input.ConsumeIntegralInRange<std::size_t>(0, 4);
    while (items_.size() < count) {
      std::string uri = textFrom(input, {"file:///tmp/a%20b", "file:///", "file:///tmp/a%7Cb",
                                         "file:///tmp/a|b", "file:///tmp/%ff", "trash:///x"});
      const bool isFolder = input.ConsumeBool();
      items_.push_back({std::move(uri), isFolder, textFrom(input, {"image/png", "text/plain"})});
    }
  }

  std::size_t count() const override { return items_.size(); }
  std::string uri(std::size_t index) const override { return items_.at(index).uri; }
  bool isFolder(std::size_t index) const override { return items_.at(index).isFolder; }
  std::string contentType(std::size_t index) const override { return items_.at(index).contentType; }

  std::vector<std::string> paths() const {
    std::vector<std::string> paths;
    for (const Item& item : items_) {
      if (const auto url = FileURL::urlWithString(item.uri)) paths.push_back(url->path());
    }
    return paths;
  }

 private:
  std::vector<Item> items_;
};

MenuEnvironment environmentFrom(Input& input) {
  MenuEnvironment environment;
  environment.homePath = "/home/ada";
  environment.containerPath = "/home/ada/.local/share/group";
  environment.resourcesPath = "/usr/share/tavrin";
  const auto readable = input.ConsumeIntegral<std::uint8_t>();
  environment.isReadable = [readable](const std::string& path) {
    return (path.size() & readable) != 0;
  };
  environment.localized = [](const std::string& key) { return key; };
  environment.fileOfIcon = [](const PropertyList& icon) {
    return std::string(icon.isData() ? "/icon.png" : "");
  };
  environment.hasSecondTerminal = input.ConsumeBool();
  environment.productIcon = "app.tavrin.Tavrin";
  return environment;
}

PropertyList::Dictionary suiteFrom(Input& input) {
  PropertyList::Dictionary suite;
  for (const std::string key : menuSettingsKeys) {
    if (input.ConsumeIntegralInRange<int>(0, 15) == 15) continue;
    if (key.starts_with("arrOf")) {
      suite.emplace(key, recordsFrom(input));
    } else if (key == settings_key::filesUrlOfCutting) {
      suite.emplace(key, textFrom(input, {"file:///tmp/cut|file:///x", ""}));
    } else if (key.starts_with("enable")) {
      suite.emplace(key, switchFrom(input));
    } else {
      suite.emplace(key, anyValue(input));
    }
  }
  return suite;
}

bool isIdentifier(std::string_view text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](char character) {
    return (character >= 'a' && character <= 'z') || (character >= '0' && character <= '9') ||
           character == '-';
  });
}

void requireRequests(const MenuItem& item, const std::vector<std::string>& paths) {
  const auto requests = requestsOfItem(item, paths);
  if (!requests) return;
  require(requests.value().size() <= std::max<std::size_t>(1, paths.size()),
          "an item has a request each at most");
  for (const PropertyList& request : requests.value()) {
    const auto read = ActionRequest::requestWithPropertyList(request);
    require(read && read.value().stringForKey(request_key::action) == item.action,
            "the host takes what the menu sends");
    requireRoundTrips(request);
  }
}

void requireSoundItem(const MenuItem& item, Identifiers& taken,
                      const std::vector<std::string>& paths) {
  require(isIdentifier(item.identifier), "an identifier has its form");
  require(taken.insert(item.identifier).second, "no two items have the same identifier");
  require(!item.title.empty() && isUtf8(item.title), "a title can be shown");
  require(std::none_of(item.title.begin(), item.title.end(),
                       [](char byte) { return static_cast<unsigned char>(byte) < ' '; }),
          "a title is one line");
  require((item.action == nullptr) != item.submenu.empty(), "an item does something or has items");
  if (item.action != nullptr) requireRequests(item, paths);
}

void requireSound(const Menu& menu, Identifiers& taken, const std::vector<std::string>& paths) {
  for (const MenuItem& item : menu) {
    requireSoundItem(item, taken, paths);
    require(item.submenu.size() <= MenuSettings::maximumRows + 1, "a submenu has an end");
    for (const MenuItem& inner : item.submenu) {
      require(inner.submenu.empty(), "a submenu has no submenus");
      requireSoundItem(inner, taken, paths);
    }
  }
}

void run(Input& input) {
  const MenuEnvironment environment = environmentFrom(input);
  const Selection selection(input);
  const MenuSettings settings = readMenuSettings(suiteFrom(input), environment);
  const std::string folder = selection.count() > 0 ? selection.uri(0) : "file:///tmp";
  Identifiers ofWindow;
  requireSound(menuForItems(settings, environment, selection), ofWindow, selection.paths());
  requireSound(menuForFolder(settings, environment, folder), ofWindow, {});
  Identifiers ofBoth;
  requireSound(menuForFolderOrItem(settings, environment, selection), ofBoth, selection.paths());
}

}  // namespace

}  // namespace tavrin::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  tavrin::fuzz::Input input(bytes, size);
  tavrin::fuzz::run(input);
  return 0;
}
