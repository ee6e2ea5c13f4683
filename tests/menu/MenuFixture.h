#pragma once

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "menu/MenuBuilding.h"

namespace tavrin {

/// Items of a selection as a test has them.
class ListedItems : public SelectedItems {
 public:
  struct Item {
    std::string uri;
    bool isFolder = false;
    std::string contentType = {};
  };

  explicit ListedItems(std::vector<Item> items) : items_(std::move(items)) {}
  ListedItems(std::size_t count, const Item& item) : items_(count, item) {}

  std::size_t count() const override { return items_.size(); }
  std::string uri(std::size_t index) const override { return items_.at(index).uri; }
  bool isFolder(std::size_t index) const override { return items_.at(index).isFolder; }
  std::string contentType(std::size_t index) const override { return items_.at(index).contentType; }

 private:
  std::vector<Item> items_;
};

/// Menus from a suite that a test writes. Texts are localised by a mark before them.
class MenuFixture : public testing::Test {
 protected:
  using Rows = PropertyList::Array;
  using Row = PropertyList::Dictionary;

  static Row folderRow(const std::string& path, const std::string& title = "") {
    return {{"enable", 1}, {"realPath", path}, {"displayName", title}};
  }
  static Row fileRow(const std::string& title, const std::string& extension, int isMain = 0) {
    return {{"enable", "1"},
            {"displayName", title},
            {"extension", extension},
            {"enableMainMenu", isMain}};
  }
  static Row iconRow(const std::string& title) {
    return {{"enable", 1}, {"displayName", title}, {"icon", PropertyList::Data{1}}};
  }
  static Row commandRow(const std::string& action, int isEnabled = 1) {
    return {{"enable", isEnabled}, {"Action", action}, {"displayName", action}};
  }

  MenuSettings settings() const { return readMenuSettings(suite, environment); }

  Menu itemsMenu(std::vector<ListedItems::Item> items) const {
    return menuForItems(settings(), environment, ListedItems(std::move(items)));
  }
  Menu folderMenu(const std::string& uri = "file:///home/ann/in%20view") const {
    return menuForFolder(settings(), environment, uri);
  }
  Menu eitherMenu(const std::string& uri) const {
    return menuForFolderOrItem(settings(), environment,
                               ListedItems({{uri, true, "inode/directory"}}));
  }

  /// Every title, those of submenus behind their own: "Set Icon/Blue".
  static std::vector<std::string> titles(const Menu& menu, const std::string& before = "") {
    std::vector<std::string> all;
    for (const MenuItem& item : menu) {
      if (item.action != nullptr) all.push_back(before + item.title);
      const auto inner = titles(item.submenu, item.title + "/");
      all.insert(all.end(), inner.begin(), inner.end());
    }
    return all;
  }

  /// The item of that title anywhere in the menu; an empty one, after a failure, when there is
  /// none.
  static MenuItem find(const Menu& menu, const std::string& title) {
    for (const MenuItem& item : menu) {
      if (item.action != nullptr && item.title == title) return item;
      for (const MenuItem& inner : item.submenu) {
        if (inner.title == title) return inner;
      }
    }
    ADD_FAILURE() << "no item " << title;
    return {};
  }

  static PropertyList requestOf(const MenuItem& item, const std::vector<std::string>& paths = {}) {
    const auto requests = requestsOfItem(item, paths);
    if (!requests || requests.value().size() != 1) {
      ADD_FAILURE() << "not one request";
      return false;
    }
    return requests.value().front();
  }

  void set(const std::string& key, PropertyList value) {
    suite.insert_or_assign(key, std::move(value));
  }

  PropertyList::Dictionary suite;
  /// The images that are not there.
  std::set<std::string> missing;
  MenuEnvironment environment{"/home/ann",
                              "/container",
                              "/resources",
                              [this](const std::string& path) { return !missing.contains(path); },
                              [](const std::string& key) { return key.empty() ? key : "*" + key; },
                              [](const PropertyList& icon) {
                                return "/icons/" + std::to_string(icon.dataIfData()->size());
                              },
                              false,
                              "product"};
};

}  // namespace tavrin
