#include "settings/RuleListEditing.h"

#include <algorithm>
#include <utility>

#include "foundation/PathHelpers.h"
#include "foundation/Translatable.h"
#include "settings/RuleRows.h"
#include "settings/SettingsController.h"

namespace tavrin {

namespace {

constexpr const char* resetText = translatable("All setting parameters will be reseted!");

/// A kind of text cell, by its identifier.
struct TextCell {
  std::string_view identifier;
  RuleList list;
  /// The field that is set to say that the title is the user's; nullptr when there is none.
  const char* ownTitleField;
};

constexpr std::array<TextCell, 6> textCells{{
    {"NewFileDisplayName", RuleList::CreateNewFile, record_field::modified},
    {"newFileName", RuleList::CopyFilesTo, nullptr},
    {"Note", RuleList::CopyFilesTo, nullptr},
    {"commonPathDisplayName", RuleList::CommonPath, nullptr},
    {"CustomIconName", RuleList::CustomIcon, record_field::modified},
    {"OthersDisplayName", RuleList::Others, record_field::nameModified},
}};

std::size_t indexOf(RuleList list) {
  return static_cast<std::size_t>(list);
}

bool isAlwaysOn(RuleList list, const PropertyList& record) {
  return list == RuleList::Others && tavrin::isAlwaysOn(record);
}

bool hasSwitch(RuleList list, std::string_view field) {
  if (list == RuleList::CommonPath) return false;
  return field == record_field::enable ||
         (field == record_field::enableMainMenu && list == RuleList::CreateNewFile);
}

std::string templateName(const PropertyList& record, const std::string& displayName) {
  return TemplateFiles::nameOf(displayName, record.stringForKey(record_field::extension));
}

std::string templateName(const PropertyList& record) {
  return templateName(record, record.stringForKey(record_field::displayName));
}

bool namesTemplate(const PropertyList::Array& records, const std::string& fileName) {
  return std::any_of(records.begin(), records.end(), [&fileName](const PropertyList& record) {
    return templateName(record) == fileName;
  });
}

}  // namespace

RuleListEditing::RuleListEditing(Platform& platform, UserDefaults& standardUserDefaults,
                                 WorkingLists& workingLists, SettingsController& controller)
    : platform_(platform),
      standardUserDefaults_(standardUserDefaults),
      workingLists_(workingLists),
      controller_(controller),
      templateFiles_(platform.bundle, platform.fileManager),
      alive_(std::make_shared<const bool>(true)) {}

RuleListEditing::~RuleListEditing() = default;

void RuleListEditing::setView(SettingsView* view) {
  view_ = view;
  workingLists_.release();
  for (const RuleListKeys& keys : ruleLists) observe(keys.list);
}

const PropertyList::Array& RuleListEditing::rows(RuleList list) const {
  return workingLists_.list(list);
}

// Removing and resetting

void RuleListEditing::removeRule(RuleList list) {
  if (view_ == nullptr || list == RuleList::Others) return;
  const auto row = view_->selectedRow(list);
  const PropertyList* record = row ? recordAt(list, *row) : nullptr;
  if (record == nullptr) return selectAfterRemoval(list, std::nullopt);
  const std::string fileName = templateName(*record);
  auto& rows = workingLists_.list(list);
  rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(*row));
  const bool isLastOfItsName = !namesTemplate(rows, fileName);
  store(list, Synchronize::Yes);
  reloadData(list);
  if (list == RuleList::CreateNewFile && isLastOfItsName) {
    logFailure("a template stays", templateFiles_.remove(fileName));
  }
  selectAfterRemoval(list, row);
}

void RuleListEditing::selectAfterRemoval(RuleList list, std::optional<std::size_t> removedRow) {
  if (view_ != nullptr) {
    if (removedRow && *removedRow > 0) {
      view_->selectRow(list, *removedRow - 1);
    } else if (rows(list).empty()) {
      view_->setRemoveButtonEnabled(list, false);
    } else {
      view_->selectRow(list, removedRow);
    }
  }
  publish(list);
}

bool RuleListEditing::isOkOfReset() {
  const auto alert = platform_.alerts.alert();
  alert->setInformativeText(platform_.bundle.localizedString(resetText));
  alert->addButtonWithTitle(platform_.bundle.localizedString("OK"));
  alert->addButtonWithTitle(platform_.bundle.localizedString("Cancel"));
  return alert->runModal() == Alert::firstButtonReturn;
}

void RuleListEditing::resetRule(RuleList list) {
  if (!isOkOfReset()) return;
  writeUnobserved(list, [this, list] { controller_.resetList(list); });
  reloadData(list);
  if (view_ != nullptr) view_->setRemoveButtonEnabled(list, false);
  publish(list);
}

// Switches

void RuleListEditing::enableAllClick(RuleList list) {
  const char* key = keysOfRuleList(list).enableAllKey;
  if (key == nullptr) return;
  const int enable = standardUserDefaults_.boolForKey(key) ? 1 : 0;
  for (std::size_t row = 0; row < rows(list).size(); ++row) {
    const bool staysOn = isAlwaysOn(list, rows(list)[row]);
    setFields(list, row, {{record_field::enable, staysOn ? 1 : enable}});
  }
  reloadData(list);
  store(list, Synchronize::No);
  publish(list);
}

void RuleListEditing::switchRow(RuleList list, std::size_t row, std::string_view field, bool on) {
  const PropertyList* record = recordAt(list, row);
  if (record == nullptr || !hasSwitch(list, field)) return;
  if (isAlwaysOn(list, *record)) {
    auto& records = workingLists_.list(list);
    records.erase(records.begin() + static_cast<std::ptrdiff_t>(row));
    return;
  }
  const bool hasNoFolder = list == RuleList::CopyFilesTo &&
                           record->stringForKey(record_field::realPath) == undefinedFolder;
  setFields(list, row, {{std::string(field), on && !hasNoFolder ? 1 : 0}});
  commit(list);
}

// Titles and order

bool RuleListEditing::controlTextShouldEndEditing(std::string_view identifier, std::size_t row,
                                                  const std::string& text) {
  const auto* cell =
      std::find_if(textCells.begin(), textCells.end(),
                   [identifier](const auto& each) { return each.identifier == identifier; });
  if (cell == textCells.end()) return true;
  const PropertyList* record = recordAt(cell->list, row);
  if (record == nullptr) return true;
  const std::string fileName = templateName(*record);
  const std::string newFileName = templateName(*record, text);
  PropertyList::Dictionary fields{{record_field::displayName, text}};
  if (cell->ownTitleField != nullptr) fields.insert({cell->ownTitleField, yesText});
  setFields(cell->list, row, fields);
  commit(cell->list);
  if (cell->list == RuleList::CreateNewFile && fileName != newFileName) {
    logFailure("a template keeps its name", templateFiles_.rename(fileName, newFileName));
  }
  return true;
}

void RuleListEditing::acceptDrop(RuleList list, std::size_t sourceRow, std::size_t dropRow) {
  const PropertyList* record = recordAt(list, sourceRow);
  if (record == nullptr || dropRow > rows(list).size() || isAlwaysOn(list, *record)) return;
  const auto countedList = list == RuleList::Others ? RuleList::CustomIcon : list;
  const bool isBelowLast = dropRow == rows(countedList).size() && dropRow > 0;
  const std::size_t lastRow = rows(list).size() - 1;
  move(list, sourceRow, std::min(isBelowLast ? dropRow - 1 : dropRow, lastRow));
  if (view_ != nullptr) view_->selectRow(list, std::nullopt);
}

void RuleListEditing::moveRow(RuleList list, std::size_t fromRow, std::size_t toRow) {
  const PropertyList* record = recordAt(list, fromRow);
  if (record == nullptr || toRow >= rows(list).size() || isAlwaysOn(list, *record)) return;
  move(list, fromRow, toRow);
  if (view_ != nullptr) view_->selectRow(list, toRow);
}

void RuleListEditing::move(RuleList list, std::size_t sourceRow, std::size_t target) {
  auto& records = workingLists_.list(list);
  PropertyList moved = std::move(records[sourceRow]);
  records.erase(records.begin() + static_cast<std::ptrdiff_t>(sourceRow));
  records.insert(records.begin() + static_cast<std::ptrdiff_t>(target), std::move(moved));
  store(list, Synchronize::No);
  publish(list);
  reloadData(list);
}

// What all edits share

const PropertyList* RuleListEditing::recordAt(RuleList list, std::size_t row) const {
  const auto& records = rows(list);
  return row < records.size() ? &records[row] : nullptr;
}

void RuleListEditing::setFields(RuleList list, std::size_t row,
                                const PropertyList::Dictionary& fields) {
  PropertyList& record = workingLists_.list(list)[row];
  if (!record.isDictionary()) record = PropertyList::Dictionary();
  for (const auto& [field, value] : fields) {
    record.dictionaryIfDictionary()->insert_or_assign(field, value);
  }
}

void RuleListEditing::commit(RuleList list) {
  store(list, Synchronize::Yes);
  reloadData(list);
  publish(list);
}

void RuleListEditing::store(RuleList list, Synchronize synchronize) {
  writeUnobserved(list, [this, list] {
    standardUserDefaults_.setObject(rows(list), keysOfRuleList(list).listKey);
  });
  if (synchronize == Synchronize::Yes) standardUserDefaults_.synchronize();
}

void RuleListEditing::writeUnobserved(RuleList list, const std::function<void()>& write) {
  // An observer would be handed the whole list, images and all, at each edit of a row.
  observations_.at(indexOf(list)).reset();
  write();
  observe(list);
}

void RuleListEditing::publish(RuleList list) {
  controller_.publishList(list);
  if (view_ == nullptr) workingLists_.release(list);
}

void RuleListEditing::reloadData(RuleList list) {
  if (view_ != nullptr) view_->reloadData(list);
}

void RuleListEditing::observe(RuleList list) {
  auto& observation = observations_.at(indexOf(list));
  observation.reset();
  if (view_ == nullptr) return;
  observation = standardUserDefaults_.observe(keysOfRuleList(list).listKey,
                                              [this, list](const std::optional<PropertyList>&) {
                                                workingLists_.release(list);
                                                reloadData(list);
                                              });
}

void RuleListEditing::logFailure(const std::string& what, const Status& status) {
  if (!status) platform_.log.write(what + ": " + status.error().describe());
}

}  // namespace tavrin
