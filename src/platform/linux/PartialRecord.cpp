#include "platform/linux/PartialRecord.h"

#include <vector>

#include "platform/linux/ItemNaming.h"

namespace tavrin {

namespace {

// Each kind has a head of its own: a record of an item to return that is cut off must not be taken
// for one of an item to remove.
constexpr std::string_view headToRemove = "tavrin partial item 1";
constexpr std::string_view headToReturn = "tavrin set-aside item 1";

bool isComponent(std::string_view name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string_view::npos;
}

}  // namespace

std::string PartialRecord::written() const {
  const std::string_view head = nameToReturnTo.empty() ? headToRemove : headToReturn;
  std::string text;
  for (const std::string_view field :
       {head, std::string_view(inode), std::string_view(name), std::string_view(folderPath)}) {
    text.append(field).push_back('\0');
  }
  if (!nameToReturnTo.empty()) text.append(nameToReturnTo).push_back('\0');
  return text;
}

std::optional<PartialRecord> partialRecordFrom(std::string_view contents) {
  std::vector<std::string> fields;
  while (!contents.empty()) {
    const std::size_t end = contents.find('\0');
    if (end == std::string_view::npos) return std::nullopt;
    fields.emplace_back(contents.substr(0, end));
    contents.remove_prefix(end + 1);
  }
  const bool isToRemove = fields.size() == 4 && fields[0] == headToRemove;
  const bool isToReturn = fields.size() == 5 && fields[0] == headToReturn && isComponent(fields[4]);
  if (!isToRemove && !isToReturn) return std::nullopt;
  if (!isRandomHiddenName(fields[2], partialItemKind)) return std::nullopt;
  return PartialRecord{fields[1], fields[2], fields[3], isToReturn ? fields[4] : std::string()};
}

}  // namespace tavrin
