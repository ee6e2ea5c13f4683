#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Platform.h"
#include "settings/SettingsView.h"
#include "settings/TemplateFiles.h"
#include "settings/WorkingLists.h"

namespace tavrin {

class SettingsController;

/// Everything by which the user changes a rule list. Each edit changes the working list, stores it
/// whole in the standard store, shows it, and publishes its enabled rows.
///
/// Rows are zero-based; an operation on a row that a list does not have, or that a list does not
/// offer, does nothing. No edit is refused and nothing fails: what a file operation could not do
/// reaches the log in one line. A record keeps the fields that an edit does not set, known or not;
/// one that is no dictionary reads as an empty record and becomes a dictionary when a field of it
/// is set. Used on the main thread.
class RuleListEditing {
 public:
  /// All outlive this object.
  RuleListEditing(Platform& platform, UserDefaults& standardUserDefaults,
                  WorkingLists& workingLists, SettingsController& controller);
  ~RuleListEditing();
  RuleListEditing(const RuleListEditing&) = delete;
  RuleListEditing& operator=(const RuleListEditing&) = delete;

  /// The window whose tables follow the edits; nullptr when it goes. While there is one, a list
  /// that another program stores is read and shown anew. The working lists are kept only as long as
  /// there is one. Edits that end later, such as a panel that is still open, need none.
  void setView(SettingsView* view);

  /// The records of a list in the user's order. Valid until the list's next edit.
  const PropertyList::Array& rows(RuleList list) const;

  /// Lets the user pick files or folders in a panel of its own, from the folder where rows were
  /// last added to this list or else from the desktop, and appends a row for each when it ends.
  /// Returns at once. Files become templates and icons, links under their own names what they lead
  /// to; one that cannot be taken gets no row, one that has the name of a template replaces it. Not
  /// for the Others list.
  void addRule(RuleList list);

  /// Lets the user pick the folder of a row of the copy-files-to list in a panel of its own, from
  /// the desktop. The row gets its full path and loses its title. Returns at once.
  void selectPath(std::size_t row);

  /// Removes the selected row, where there is one, with its template unless another row names the
  /// same one; selects the row before it, or the new first one. An empty list disables its remove
  /// button. Publishes in any case. Not for the Others list; nothing without a view.
  void removeRule(RuleList list);

  /// Asks whether all rows of a list are to go; true for "OK".
  bool isOkOfReset();

  /// Gives a list its default rows, when the user agrees, and disables its remove button.
  void resetRule(RuleList list);

  /// Switches every row as the list's enable-all switch is in the standard store; the three
  /// commands that are always on stay on. Not for lists without that switch.
  void enableAllClick(RuleList list);

  /// Switches one row. `field` is record_field::enable, or record_field::enableMainMenu in the
  /// create-new-file list. A row of the copy-files-to list without a folder stays off. A command
  /// that is always on leaves the working list until that is next loaded: its switch is not to be
  /// offered. Not for the common paths, whose rows have no switch.
  void switchRow(RuleList list, std::size_t row, std::string_view field, bool on);

  /// Gives a row the title that its text cell ends editing with. `identifier` is the cell's and
  /// names the list: "NewFileDisplayName", "newFileName" or "Note" (copy-files-to),
  /// "commonPathDisplayName", "CustomIconName", "OthersDisplayName"; any other does nothing. The
  /// template of a row takes its title along, unless a file has that name already. Always true: no
  /// text is refused.
  bool controlTextShouldEndEditing(std::string_view identifier, std::size_t row,
                                   const std::string& text);

  /// Moves a row of a list to the gap above `dropRow` (the row count: below the last row) and
  /// clears the selection. `dropRow` counts the moved row too, so that a row which moves down comes
  /// to stand one place below the gap. For the row count, `dropRow` minus one is meant; in the
  /// Others list it is the count of the custom icons that is compared with. A place that this
  /// leaves outside of the list is its nearest end: no record gets lost. Commands that are always
  /// on do not move.
  void acceptDrop(RuleList list, std::size_t sourceRow, std::size_t dropRow);

  /// Moves a row to another place in its list, which is counted without it, and selects it there.
  /// Commands that are always on do not move.
  void moveRow(RuleList list, std::size_t fromRow, std::size_t toRow);

 private:
  struct Adding;
  enum class Picks { Files, Folders };
  using Picked = std::function<void(const std::vector<FileURL>& urls)>;

  static const Adding* addingOf(RuleList list);
  std::shared_ptr<OpenPanel> panelFor(Picks picks, const std::string& startFolder) const;
  void begin(const std::shared_ptr<OpenPanel>& panel, Picked picked);
  std::string desktop() const;
  std::string startFolder(const Adding& adding) const;
  void appendRows(const Adding& adding, const std::vector<FileURL>& urls);
  Result<PropertyList::Dictionary> recordOfTemplate(const std::string& path);
  Result<PropertyList::Dictionary> recordOfFolder(const std::string& path);
  Result<PropertyList::Dictionary> recordOfIcon(const std::string& path);

  const PropertyList* recordAt(RuleList list, std::size_t row) const;
  void setFields(RuleList list, std::size_t row, const PropertyList::Dictionary& fields);
  void commit(RuleList list);
  void move(RuleList list, std::size_t sourceRow, std::size_t target);

  enum class Synchronize { No, Yes };
  void store(RuleList list, Synchronize synchronize);
  void writeUnobserved(RuleList list, const std::function<void()>& write);
  void publish(RuleList list);
  void reloadData(RuleList list);
  void selectAfterRemoval(RuleList list, std::optional<std::size_t> removedRow);
  void observe(RuleList list);
  void logFailure(const std::string& what, const Status& status);

  Platform& platform_;
  UserDefaults& standardUserDefaults_;
  WorkingLists& workingLists_;
  SettingsController& controller_;
  TemplateFiles templateFiles_;
  SettingsView* view_ = nullptr;
  /// Indexed by RuleList; empty without a view.
  std::array<Observation, ruleLists.size()> observations_;
  /// Panels that still stand when this object goes find this gone.
  std::shared_ptr<const bool> alive_;
};

}  // namespace tavrin
