#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <variant>

#include "foundation/PropertyList.h"
#include "platform/Platform.h"
#include "settings/RowTitles.h"
#include "settings/SettingsKeys.h"

namespace tavrin {

/// A column of a rule table.
struct RuleColumn {
  enum class Kind { Switch, Icon, Text, Option };

  /// Tells the columns of one table apart.
  const char* identifier;
  /// In English; the user sees it localised. Of an icon it names the picture for those who cannot
  /// see it, and is not shown.
  const char* title;
  Kind kind;
  /// Whether the title stands in the middle, as what is below it does.
  bool isCentred = kind == Kind::Switch;
};

/// Columns that others ask for by their identifiers.
namespace column_identifier {

inline constexpr const char* realPath = "realPath";
inline constexpr const char* option = "Option";

}  // namespace column_identifier

/// The columns of a list's table, from the first to the last.
std::span<const RuleColumn> columnsOfRuleList(RuleList list);

/// Where the picture of a cell comes from.
namespace row_icon {

/// An image file, and the file whose icon stands in when there is no such image; both are paths.
struct ImageFile {
  std::string path;
  std::string standIn;
};
/// The icon that the desktop has for the item at a path.
struct Item {
  std::string path;
};
/// An image of the program's own, by the path of its file.
struct Resource {
  std::string path;
};
/// The bytes of an image file; null when there are none.
struct Bytes {
  std::shared_ptr<const PropertyList::Data> data;
};

}  // namespace row_icon

using RowIcon = std::variant<std::monostate, row_icon::ImageFile, row_icon::Item,
                             row_icon::Resource, row_icon::Bytes>;

/// What one cell of a rule table shows. A column that a table does not have gives an empty cell.
struct RuleCell {
  std::string text;
  /// What the end of its editing is reported with; empty for a text that cannot be edited.
  std::string editingIdentifier;
  /// The state of its switch, in a cell that has one.
  std::optional<bool> isOn;
  /// The record's field that the switch changes.
  const char* switchField = record_field::enable;
  bool isSwitchEnabled = true;
  /// The side of the picture in points.
  int iconSide = 0;
  RowIcon icon;
  bool isCentred = false;
  /// The `Action` whose option control the cell holds, and what is chosen there; empty where there
  /// is no choice.
  std::string option;
  std::string chosenOption;
};

/// Builds the cells of the rule tables from the records. Reads whatever a record holds: a field
/// that is missing or of another type is empty or off. Used on the main thread.
class RuleRows {
 public:
  /// Outlives this object.
  explicit RuleRows(Platform& platform);

  /// The cell of a list's record in a column.
  RuleCell cell(RuleList list, const RuleColumn& column, const PropertyList& record) const;

  RuleCell tableViewForCreateNewFile(std::string_view column, const PropertyList& record) const;
  RuleCell tableViewForCopyTo(std::string_view column, const PropertyList& record) const;
  RuleCell tableViewForCommonPath(std::string_view column, const PropertyList& record) const;
  RuleCell tableViewForCustomIcon(std::string_view column, const PropertyList& record) const;
  RuleCell tableViewForOthers(std::string_view column, const PropertyList& record) const;

 private:
  RuleCell pathCell(const PropertyList& record) const;
  RuleCell folderIconCell(const PropertyList& record) const;
  std::string sizeOf(const PropertyList& record) const;
  RowIcon resourceIcon(const std::string& action) const;
  RuleCell optionCell(const std::string& action) const;

  Platform& platform_;
  std::unique_ptr<UserDefaults> standardUserDefaults_;
  Localization localized_;
  std::string homePath_;
  std::string templatesFolder_;
};

/// True for a record of the Others list whose command cannot be switched off.
bool isAlwaysOn(const PropertyList& othersRecord);

}  // namespace tavrin
