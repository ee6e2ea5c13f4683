#include "fuzz/HostileValues.h"

#include <cstdint>
#include <utility>

#include "foundation/PathHelpers.h"
#include "settings/CommandNames.h"
#include "settings/SettingsKeys.h"

namespace tavrin::fuzz {

namespace {

constexpr std::size_t longestText = 24;
constexpr std::size_t mostElements = 3;
constexpr std::size_t mostRecords = 6;
constexpr int deepest = 3;

PropertyList valueFrom(Input& input, int depth);

PropertyList arrayFrom(Input& input, int depth) {
  PropertyList::Array elements;
  const auto count = input.ConsumeIntegralInRange<std::size_t>(0, mostElements);
  while (elements.size() < count) elements.push_back(valueFrom(input, depth + 1));
  return elements;
}

PropertyList dictionaryFrom(Input& input, int depth) {
  PropertyList::Dictionary entries;
  const auto count = input.ConsumeIntegralInRange<std::size_t>(0, mostElements);
  for (std::size_t index = 0; index < count; ++index) {
    std::string key = input.ConsumeRandomLengthString(longestText);
    entries.insert_or_assign(std::move(key), valueFrom(input, depth + 1));
  }
  return entries;
}

PropertyList dataFrom(Input& input) {
  const auto count = input.ConsumeIntegralInRange<std::size_t>(0, longestText);
  return input.ConsumeBytes<std::uint8_t>(count);
}

PropertyList valueFrom(Input& input, int depth) {
  switch (input.ConsumeIntegralInRange<int>(0, depth < deepest ? 7 : 5)) {
    case 0:
      return input.ConsumeBool();
    case 1:
      return input.ConsumeIntegral<std::int64_t>();
    case 2:
      return input.ConsumeFloatingPoint<double>();
    case 3:
      return input.ConsumeRandomLengthString(longestText);
    case 4:
      return dataFrom(input);
    case 5:
      return PropertyList::Date{input.ConsumeFloatingPoint<double>()};
    case 6:
      return arrayFrom(input, depth);
    default:
      return dictionaryFrom(input, depth);
  }
}

std::string commandFrom(Input& input) {
  namespace command = command_name;
  return textFrom(
      input,
      {command::hideSelected, command::hideAll, command::unhideSelected, command::unhideAll,
       command::openInITerm2, command::deleteDirectly, command::openInTerminal, command::paste,
       command::copyPath, command::cut, command::imageToIconForMac, command::imageToIconForIOS,
       command::openInVSCode, command::openInIDEA, command::openInSublimeText,
       command::openInFileManager, command::openInEmacs, command::snapvane, "Translate by Google"});
}

PropertyList usualFieldFrom(Input& input, std::string_view field) {
  if (field == record_field::action) return commandFrom(input);
  if (field == record_field::icon) return dataFrom(input);
  if (field == record_field::extension) return textFrom(input, {"", "txt", "tar.gz", "../x", "/"});
  if (field == record_field::displayName) return textFrom(input, {"", "A", "New\nFile", "\xff"});
  if (field != record_field::realPath) return switchFrom(input);
  return textFrom(input, {"/tmp", "~/Desktop", "~", "/home/ada/Music", undefinedFolder.data()});
}

}  // namespace

std::string textFrom(Input& input, std::initializer_list<const char*> usual) {
  const auto choice = input.ConsumeIntegralInRange<std::size_t>(0, usual.size());
  if (choice < usual.size()) return *(usual.begin() + choice);
  return input.ConsumeRandomLengthString(longestText);
}

PropertyList anyValue(Input& input) {
  return valueFrom(input, 0);
}

PropertyList switchFrom(Input& input) {
  switch (input.ConsumeIntegralInRange<int>(0, 4)) {
    case 0:
      return false;
    case 1:
      return true;
    case 2:
      return yesText;
    case 3:
      return 1;
    default:
      return anyValue(input);
  }
}

PropertyList recordFrom(Input& input) {
  PropertyList::Dictionary record;
  for (const char* field :
       {record_field::enable, record_field::displayName, record_field::extension,
        record_field::enableMainMenu, record_field::modified, record_field::realPath,
        record_field::icon, record_field::action, record_field::nameModified}) {
    switch (input.ConsumeIntegralInRange<int>(0, 7)) {
      case 0:
        break;
      case 1:
        record.insert_or_assign(field, anyValue(input));
        break;
      case 2:
        return anyValue(input);
      default:
        record.insert_or_assign(field, usualFieldFrom(input, field));
    }
  }
  return record;
}

PropertyList recordsFrom(Input& input) {
  if (input.ConsumeIntegralInRange<int>(0, 15) == 15) return anyValue(input);
  PropertyList::Array records;
  const auto count = input.ConsumeIntegralInRange<std::size_t>(0, mostRecords);
  while (records.size() < count) records.push_back(recordFrom(input));
  return records;
}

}  // namespace tavrin::fuzz
