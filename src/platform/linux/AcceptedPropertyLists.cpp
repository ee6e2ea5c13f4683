#include "platform/linux/AcceptedPropertyLists.h"

#include "platform/linux/CurrentStartupToken.h"

namespace tavrin {

Result<PropertyList> AcceptedPropertyLists::propertyListWithContentsOfFile(
    const std::string& path) {
  const auto file = accepted_.takeContents(path);
  setCurrentStartupToken(file ? file->startupToken : "");
  if (!file) return LinuxPropertyListSerialization::propertyListWithContentsOfFile(path);
  if (!file->contents) return file->contents.error();
  return propertyListFromContentsOfFile(file->contents.value(), path);
}

}  // namespace tavrin
