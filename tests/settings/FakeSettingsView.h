#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "settings/SettingsView.h"

namespace tavrin {

/// Tables without a window.
class FakeSettingsView final : public SettingsView {
 public:
  void createNewFilePressed() override { events.emplace_back("first page"); }
  void reloadData(RuleList list) override {
    events.push_back(std::string("reload ") + keysOfRuleList(list).listKey);
    if (whileReloading) whileReloading();
  }
  std::optional<std::size_t> selectedRow(RuleList list) const override {
    const auto row = selected.find(list);
    return row == selected.end() ? std::nullopt : row->second;
  }
  void selectRow(RuleList list, std::optional<std::size_t> row) override { selected[list] = row; }
  void setRemoveButtonEnabled(RuleList list, bool enabled) override {
    removeButtons[list] = enabled;
  }

  /// What was shown, in order.
  std::vector<std::string> events;
  std::function<void()> whileReloading;
  std::map<RuleList, std::optional<std::size_t>> selected;
  /// The remove buttons that were set.
  std::map<RuleList, bool> removeButtons;
};

}  // namespace tavrin
