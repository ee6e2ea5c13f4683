#include "settings/DefaultSettings.h"

#include <utility>

#include "settings/SettingsKeys.h"

namespace tavrin {

namespace {

constexpr const char* resourceName = "DefaultPreferences";
constexpr const char* resourceType = "plist";

DefaultSettings noDefaults(Log& log, const std::string& reason) {
  log.write("there are no default settings: " + reason);
  return {};
}

}  // namespace

DefaultSettings::DefaultSettings(PropertyList::Dictionary values) : values_(std::move(values)) {}

DefaultSettings DefaultSettings::loadedFromBundle(const Bundle& bundle,
                                                  PropertyListSerialization& propertyLists,
                                                  Log& log) {
  const auto path = bundle.pathForResource(resourceName, resourceType);
  if (!path) return noDefaults(log, "the program has no such resource");
  auto contents = propertyLists.propertyListWithContentsOfFile(*path);
  if (!contents) return noDefaults(log, contents.error().describe());
  auto* values = contents.value().dictionaryIfDictionary();
  if (values == nullptr) return noDefaults(log, *path + " is no dictionary");
  return DefaultSettings(std::move(*values));
}

DefaultSettings DefaultSettings::withFoldersAt(
    const std::map<std::string, std::string>& places) const {
  PropertyList::Dictionary values = values_;
  for (const char* key : {settings_key::arrOfCopyFilesTo, settings_key::arrOfCommonPath}) {
    const auto rules = values.find(key);
    if (rules == values.end() || !rules->second.isArray()) continue;
    for (PropertyList& rule : *rules->second.arrayIfArray()) {
      const auto place = places.find(rule.stringForKey(record_field::realPath));
      if (place == places.end()) continue;
      rule.dictionaryIfDictionary()->insert_or_assign(record_field::realPath, place->second);
    }
  }
  return DefaultSettings(std::move(values));
}

PropertyList::Array DefaultSettings::arrayForKey(const std::string& key) const {
  const auto entry = values_.find(key);
  const auto* array = entry == values_.end() ? nullptr : entry->second.arrayIfArray();
  return array == nullptr ? PropertyList::Array() : *array;
}

}  // namespace tavrin
