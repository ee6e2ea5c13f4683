#include "platform/linux/AcceptedPropertyLists.h"

namespace tavrin {

Result<PropertyList> AcceptedPropertyLists::propertyListWithContentsOfFile(
    const std::string& path) {
  const auto contents = accepted_.takeContents(path);
  if (!contents) return LinuxPropertyListSerialization::propertyListWithContentsOfFile(path);
  if (!*contents) return contents->error();
  return propertyListFromContentsOfFile(contents->value(), path);
}

}  // namespace tavrin
