#include <algorithm>

#include "fuzz/HostileValues.h"
#include "fuzz/Require.h"
#include "fuzz/SamePropertyList.h"
#include "settings/RuleRows.h"
#include "settings/SettingsController.h"
#include "tests/settings/FakeSettingsView.h"
#include "tests/support/FakePlatform.h"

namespace tavrin::fuzz {

namespace {

constexpr int mostEdits = 4;

/// The preferences with rule lists as somebody has written them.
class Preferences : private FakePlatform {
 public:
  explicit Preferences(Input& input)
      : input_(input),
        list_(ruleLists.at(input.ConsumeIntegralInRange<std::size_t>(0, ruleLists.size() - 1))) {
    fileManager.addFolder("/containers/" + bundle.group + "/Templates/CreateNewFile");
    standard_->setObject(recordsFrom(input), list_.listKey);
    controller_.setView(&view_);
  }

  ~Preferences() { controller_.setView(nullptr); }
  Preferences(const Preferences&) = delete;
  Preferences& operator=(const Preferences&) = delete;

  void show() {
    const RuleRows cells(platform);
    for (const PropertyList& record : rows()) {
      for (const RuleColumn& column : columnsOfRuleList(list_.list)) {
        const RuleCell cell = cells.cell(list_.list, column, record);
        require(cell.isOn.has_value() == (column.kind == RuleColumn::Kind::Switch),
                "the cells of switches have a switch, and no others");
      }
    }
  }

  void edit() {
    const std::size_t count = rows().size();
    const auto row = input_.ConsumeIntegralInRange<std::size_t>(0, count + 1);
    // The switch of such a command takes it from the list that is edited.
    const bool mayLeave =
        list_.list == RuleList::Others && row < count && isAlwaysOn(rows().at(row));
    const bool isRemoval = editRow(row) || mayLeave;
    const std::size_t left = rows().size();
    require(left == count || (isRemoval && left + 1 == count), "no edit loses another row");
    requireStoredAndPublished();
  }

 private:
  const PropertyList::Array& rows() { return controller_.rules().rows(list_.list); }

  /// True for a removal.
  bool editRow(std::size_t row) {
    RuleListEditing& rules = controller_.rules();
    const auto other = input_.ConsumeIntegralInRange<std::size_t>(0, rows().size() + 1);
    switch (input_.ConsumeIntegralInRange<int>(0, 5)) {
      case 0:
        rules.switchRow(list_.list, row,
                        input_.ConsumeBool() ? record_field::enable : record_field::enableMainMenu,
                        input_.ConsumeBool());
        return false;
      case 1:
        retitle(row);
        return false;
      case 2:
        rules.acceptDrop(list_.list, row, other);
        return false;
      case 3:
        rules.moveRow(list_.list, row, other);
        return false;
      case 4:
        if (list_.enableAllKey != nullptr)
          standard_->setObject(switchFrom(input_), list_.enableAllKey);
        rules.enableAllClick(list_.list);
        return false;
      default:
        view_.selected[list_.list] = row;
        rules.removeRule(list_.list);
        return true;
    }
  }

  void retitle(std::size_t row) {
    const std::string cell =
        textFrom(input_, {"NewFileDisplayName", "newFileName", "Note", "commonPathDisplayName",
                          "CustomIconName", "OthersDisplayName"});
    controller_.rules().controlTextShouldEndEditing(cell, row,
                                                    textFrom(input_, {"", "A", "../up", "a/b"}));
  }

  void requireStoredAndPublished() {
    controller_.publishList(list_.list);
    PropertyList::Array enabled = rows();
    std::erase_if(enabled,
                  [](const PropertyList& row) { return !row.boolForKey(record_field::enable); });
    const auto published = suite_->objectForKey(list_.listKey);
    require(published && areSame(*published, enabled, Dates::Exact),
            "the menu has the enabled rows");
    if (list_.list == RuleList::Others) return;
    const auto stored = standard_->objectForKey(list_.listKey);
    const bool isArray = stored && stored->isArray();
    require(isArray ? areSame(*stored, rows(), Dates::Exact) : rows().empty(),
            "the rows are what is stored");
  }

  Input& input_;
  const RuleListKeys& list_;
  DefaultSettings defaults_;
  std::unique_ptr<UserDefaults> standard_ = userDefaults.standardUserDefaults();
  std::unique_ptr<UserDefaults> suite_ = userDefaults.suite(bundle.group);
  WorkingLists lists_{*standard_};
  SettingsController controller_{platform, *standard_, lists_, defaults_};
  FakeSettingsView view_;
};

void run(Input& input) {
  Preferences preferences(input);
  preferences.show();
  for (int edits = input.ConsumeIntegralInRange<int>(0, mostEdits); edits > 0; --edits) {
    preferences.edit();
  }
  preferences.show();
}

}  // namespace

}  // namespace tavrin::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  tavrin::fuzz::Input input(bytes, size);
  tavrin::fuzz::run(input);
  return 0;
}
