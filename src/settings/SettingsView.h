#pragma once

#include <cstddef>
#include <optional>

#include "settings/SettingsKeys.h"

namespace tavrin {

/// What the editing of rule lists asks of the window that shows them: one table and one remove
/// button a list. Rows are zero-based. Used on the main thread.
class SettingsView {
 public:
  virtual ~SettingsView() = default;

  /// Shows the page of the first list.
  virtual void createNewFilePressed() = 0;

  /// Shows the rows of a list as they are now; the index of the selected row and the scrolled place
  /// stay where they are as far as there are rows.
  virtual void reloadData(RuleList list) = 0;

  /// The row that is selected in the table of a list.
  virtual std::optional<std::size_t> selectedRow(RuleList list) const = 0;

  /// Selects one row of a list; nothing clears the selection.
  virtual void selectRow(RuleList list, std::optional<std::size_t> row) = 0;

  virtual void setRemoveButtonEnabled(RuleList list, bool enabled) = 0;
};

}  // namespace tavrin
