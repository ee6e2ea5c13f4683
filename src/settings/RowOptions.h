#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "platform/UserDefaults.h"

namespace tavrin {

/// One settings key that an option sets, with its value for each of the two choices.
struct OptionSetting {
  const char* key;
  std::array<bool, 2> values;
};

/// The option of a command of the Others list: a pop-up with two choices.
struct RowOption {
  /// The command, a record's "Action".
  std::string_view action;
  /// The titles of the choices; the keys of their translations.
  std::array<const char*, 2> choices;
  /// What a choice sets. The first key tells which one is chosen; an unused entry has no key.
  std::array<OptionSetting, 2> settings;
};

/// Every option.
inline constexpr std::size_t rowOptionCount = 5;
extern const std::array<RowOption, rowOptionCount> rowOptions;

/// The option of a command; nullptr when it has none.
const RowOption* optionOfAction(std::string_view action);

/// The chosen one of the two choices, 0 or 1, as the standard store has it; an absent setting reads
/// as off.
int chosenOption(const RowOption& option, const UserDefaults& standardUserDefaults);

/// The choice that gives the setting with that key, one of the option's, a value.
int choiceWithValue(const RowOption& option, std::string_view key, bool value);

/// Stores a choice, 0 or 1, in the standard store; any other number does nothing.
void chooseOption(const RowOption& option, int choice, UserDefaults& standardUserDefaults);

}  // namespace tavrin
