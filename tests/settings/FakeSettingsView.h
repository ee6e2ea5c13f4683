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
  void createNewFilePressed() override { tell("first page"); }
  void reloadData(RuleList list) override {
    tell(std::string("reload ") + keysOfRuleList(list).listKey);
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
  /// What happens while something is shown.
  std::function<void()> whileShowing;
  std::map<RuleList, std::optional<std::size_t>> selected;
  /// The remove buttons that were set.
  std::map<RuleList, bool> removeButtons;

 private:
  void tell(std::string event) {
    events.push_back(std::move(event));
    if (whileShowing) whileShowing();
  }
};

}  // namespace tavrin
