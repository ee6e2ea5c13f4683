#include "settings/RuleRows.h"

#include <algorithm>
#include <array>
#include <utility>

#include "foundation/PathHelpers.h"
#include "foundation/PathString.h"
#include "foundation/Translatable.h"
#include "settings/RowOptions.h"
#include "settings/TemplateFiles.h"

namespace tavrin {

namespace {

using Kind = RuleColumn::Kind;

constexpr std::array createNewFileColumns{
    RuleColumn{"Enable", translatable("Enabled"), Kind::Switch},
    RuleColumn{"NewFileIcon", translatable("Icon"), Kind::Icon},
    RuleColumn{"NewFileDisplayName", translatable("Name"), Kind::Text},
    RuleColumn{"Extension", translatable("Extension"), Kind::Text},
    RuleColumn{"EnableMainMenu", translatable("In the main menu"), Kind::Switch},
};
constexpr std::array copyFilesToColumns{
    RuleColumn{"Enable", translatable("Enabled"), Kind::Switch},
    RuleColumn{"SendFileIcon", translatable("Icon"), Kind::Icon},
    RuleColumn{"DisplayName", translatable("Name"), Kind::Text},
    RuleColumn{column_identifier::realPath, translatable("Folder"), Kind::Text},
};
constexpr std::array commonPathColumns{
    RuleColumn{"commonPathIcon", translatable("Icon"), Kind::Icon},
    RuleColumn{"commonPathDisplayName", translatable("Name"), Kind::Text},
    RuleColumn{column_identifier::realPath, translatable("Folder"), Kind::Text},
};
constexpr std::array customIconColumns{
    RuleColumn{"Enable", translatable("Enabled"), Kind::Switch},
    RuleColumn{"Icon", translatable("Icon"), Kind::Icon},
    RuleColumn{"CustomIconName", translatable("Name"), Kind::Text},
    RuleColumn{"Size", translatable("Size"), Kind::Text, true},
};
constexpr std::array othersColumns{
    RuleColumn{"OthersEnable", translatable("Enabled"), Kind::Switch},
    RuleColumn{"OthersIcon", translatable("Icon"), Kind::Icon},
    RuleColumn{"OthersDisplayName", translatable("Name"), Kind::Text},
    RuleColumn{column_identifier::option, translatable("Option"), Kind::Option},
};

constexpr int iconSide = 28;
constexpr int commandIconSide = 20;

RuleCell textCell(std::string text) {
  RuleCell cell;
  cell.text = std::move(text);
  return cell;
}

RuleCell editableCell(std::string text, const char* identifier) {
  RuleCell cell = textCell(std::move(text));
  cell.editingIdentifier = identifier;
  return cell;
}

RuleCell switchCell(const PropertyList& record, const char* field) {
  RuleCell cell;
  cell.isOn = record.boolForKey(field);
  cell.switchField = field;
  return cell;
}

RuleCell iconCell(RowIcon icon, int side) {
  RuleCell cell;
  cell.icon = std::move(icon);
  cell.iconSide = side;
  return cell;
}

}  // namespace

std::span<const RuleColumn> columnsOfRuleList(RuleList list) {
  switch (list) {
    case RuleList::CreateNewFile:
      return createNewFileColumns;
    case RuleList::CopyFilesTo:
      return copyFilesToColumns;
    case RuleList::CommonPath:
      return commonPathColumns;
    case RuleList::CustomIcon:
      return customIconColumns;
    case RuleList::Others:
      break;
  }
  return othersColumns;
}

bool isAlwaysOn(const PropertyList& othersRecord) {
  const std::string action = othersRecord.stringForKey(record_field::action);
  return std::find(alwaysOnActions.begin(), alwaysOnActions.end(), action) != alwaysOnActions.end();
}

RuleRows::RuleRows(Platform& platform)
    : platform_(platform),
      standardUserDefaults_(platform.userDefaults.standardUserDefaults()),
      localized_(
          [&platform](const std::string& key) { return platform.bundle.localizedString(key); }),
      homePath_(realHomePath(platform.bundle.account())) {
  const auto container = platform.fileManager.containerPathForSecurityApplicationGroupIdentifier(
      platform.bundle.groupIdentifier());
  if (container) {
    templatesFolder_ = appendingPathComponent(*container, template_folder::createNewFile);
  }
}

RuleCell RuleRows::cell(RuleList list, const RuleColumn& column, const PropertyList& record) const {
  switch (list) {
    case RuleList::CreateNewFile:
      return tableViewForCreateNewFile(column.identifier, record);
    case RuleList::CopyFilesTo:
      return tableViewForCopyTo(column.identifier, record);
    case RuleList::CommonPath:
      return tableViewForCommonPath(column.identifier, record);
    case RuleList::CustomIcon:
      return tableViewForCustomIcon(column.identifier, record);
    case RuleList::Others:
      break;
  }
  return tableViewForOthers(column.identifier, record);
}

RuleCell RuleRows::tableViewForCreateNewFile(std::string_view column,
                                             const PropertyList& record) const {
  const std::string extension = record.stringForKey(record_field::extension);
  if (column == "Extension") return textCell(extension);
  if (column == "NewFileDisplayName") {
    return editableCell(titleOfRow(record, record_field::modified, localized_),
                        "NewFileDisplayName");
  }
  if (column == "Enable") return switchCell(record, record_field::enable);
  if (column == "EnableMainMenu") return switchCell(record, record_field::enableMainMenu);
  if (column != "NewFileIcon") return {};
  std::string title = record.stringForKey(record_field::displayName);
  return iconCell(
      row_icon::ImageFile{
          appendingPathComponent(templatesFolder_, extension + ".png"),
          appendingPathComponent(templatesFolder_, TemplateFiles::nameOf(title, extension))},
      iconSide);
}

RuleCell RuleRows::tableViewForCopyTo(std::string_view column, const PropertyList& record) const {
  // The end of editing tells this list by "Note".
  if (column == "DisplayName")
    return editableCell(titleOfFolderRow(record, homePath_, localized_), "Note");
  if (column == column_identifier::realPath) return pathCell(record);
  if (column == "Enable") return switchCell(record, record_field::enable);
  if (column == "SendFileIcon") return folderIconCell(record);
  return {};
}

RuleCell RuleRows::tableViewForCommonPath(std::string_view column,
                                          const PropertyList& record) const {
  if (column == "commonPathDisplayName") {
    return editableCell(titleOfFolderRow(record, homePath_, localized_), "commonPathDisplayName");
  }
  if (column == column_identifier::realPath) return pathCell(record);
  if (column == "commonPathIcon") return folderIconCell(record);
  return {};
}

RuleCell RuleRows::tableViewForCustomIcon(std::string_view column,
                                          const PropertyList& record) const {
  if (column == "CustomIconName") {
    return editableCell(titleOfRow(record, record_field::modified, localized_), "CustomIconName");
  }
  if (column == "Enable") return switchCell(record, record_field::enable);
  if (column == "Icon") {
    const PropertyList* icon = record.find(record_field::icon);
    return iconCell(row_icon::Bytes{icon == nullptr ? nullptr : icon->sharedDataIfData()},
                    iconSide);
  }
  if (column != "Size") return {};
  RuleCell size = textCell(sizeOf(record));
  size.isCentred = true;
  return size;
}

RuleCell RuleRows::tableViewForOthers(std::string_view column, const PropertyList& record) const {
  const std::string action = record.stringForKey(record_field::action);
  if (column == "OthersDisplayName") {
    std::string title = titleOfRow(record, record_field::nameModified, localized_);
    if (isAlwaysOn(record)) return textCell(std::move(title));
    return editableCell(std::move(title), "OthersDisplayName");
  }
  if (column == "OthersIcon") return iconCell(resourceIcon(action), commandIconSide);
  if (column == "OthersEnable") {
    RuleCell cell = switchCell(record, record_field::enable);
    if (isAlwaysOn(record)) cell.isOn = true;
    cell.isSwitchEnabled = !isAlwaysOn(record);
    return cell;
  }
  return column == column_identifier::option ? optionCell(action) : RuleCell();
}

RuleCell RuleRows::optionCell(const std::string& action) const {
  RuleCell cell;
  cell.option = action;
  const RowOption* option = optionOfAction(action);
  if (option == nullptr) return cell;
  const int chosen = tavrin::chosenOption(*option, *standardUserDefaults_);
  cell.chosenOption =
      platform_.bundle.localizedString(option->choices.at(static_cast<std::size_t>(chosen)));
  return cell;
}

RuleCell RuleRows::pathCell(const PropertyList& record) const {
  std::string path = record.stringForKey(record_field::realPath);
  for (std::size_t home = path.find(homePath_); home != path.npos && !homePath_.empty();
       home = path.find(homePath_, home + 1)) {
    path.replace(home, homePath_.size(), "~");
  }
  return textCell(std::move(path));
}

RuleCell RuleRows::folderIconCell(const PropertyList& record) const {
  const std::string path = record.stringForKey(record_field::realPath);
  return iconCell(row_icon::Item{expandingHome(path, homePath_)}, iconSide);
}

std::string RuleRows::sizeOf(const PropertyList& record) const {
  const PropertyList* icon = record.find(record_field::icon);
  const PropertyList::Data* data = icon == nullptr ? nullptr : icon->dataIfData();
  const auto size = data == nullptr ? std::nullopt : platform_.images.sizeOfImageWithData(*data);
  if (!size) return "0 x 0";
  return std::to_string(size->width) + " x " + std::to_string(size->height);
}

RowIcon RuleRows::resourceIcon(const std::string& action) const {
  // One image stands for all of these commands.
  const bool isPinning = action.find(command_name::snapvane) != action.npos;
  const auto path =
      platform_.bundle.pathForResource(isPinning ? command_name::snapvane : action, "png");
  if (!path) return {};
  return row_icon::Resource{*path};
}

}  // namespace tavrin
