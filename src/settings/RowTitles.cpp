#include "settings/RowTitles.h"

#include "foundation/PathHelpers.h"
#include "settings/SettingsKeys.h"

namespace tavrin {

std::string titleOfRow(const PropertyList& record, const char* modifiedField,
                       const Localization& localized) {
  std::string title = record.stringForKey(record_field::displayName);
  return record.boolForKey(modifiedField) ? title : localized(title);
}

std::string titleOfFolderRow(const PropertyList& record, std::string_view homePath,
                             const Localization& localized) {
  std::string title = record.stringForKey(record_field::displayName);
  if (!title.empty()) return title;
  return displayNameOfFolder(expandingHome(record.stringForKey(record_field::realPath), homePath),
                             homePath, localized);
}

}  // namespace tavrin
