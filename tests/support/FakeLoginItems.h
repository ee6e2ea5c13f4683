#pragma once

#include <string>
#include <vector>

#include "platform/LoginItems.h"

namespace tavrin {

/// A list of login items in memory.
class FakeLoginItems final : public LoginItems {
 public:
  std::vector<Item> snapshot() const override { return items; }

  void insertLast(const std::string& programPath) override {
    items.push_back({"added " + programPath, programPath});
  }

  void remove(const Item& item) override {
    std::erase_if(items, [&item](const Item& entry) { return entry.reference == item.reference; });
  }

  std::vector<Item> items;
};

}  // namespace tavrin
