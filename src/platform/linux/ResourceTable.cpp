#include "platform/linux/ResourceTable.h"

#include <utility>

#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

Result<PropertyList> readTable(const std::string& name, const Bundle& bundle,
                               PropertyListSerialization& propertyLists) {
  const std::optional<std::string> path = bundle.pathForResource(name, "plist");
  if (path) return propertyLists.propertyListWithContentsOfFile(*path);
  return systemError("find resource", name, std::errc::no_such_file_or_directory);
}

}  // namespace

ResourceTable::ResourceTable(const Bundle& bundle, PropertyListSerialization& propertyLists,
                             Log& log, std::string name)
    : bundle_(bundle), propertyLists_(propertyLists), log_(log), name_(std::move(name)) {}

const PropertyList* ResourceTable::find(std::initializer_list<std::string_view> keys) {
  const PropertyList* found = &contents();
  for (const std::string_view key : keys) {
    found = found->find(key);
    if (found == nullptr) return nullptr;
  }
  return found;
}

const PropertyList& ResourceTable::contents() {
  if (contents_) return *contents_;
  Result<PropertyList> read = readTable(name_, bundle_, propertyLists_);
  if (!read) log_.write("resource " + name_ + ": " + read.error().describe());
  contents_ = read ? std::move(read).value() : PropertyList(PropertyList::Dictionary{});
  return *contents_;
}

std::vector<std::string> stringsOf(const PropertyList* array) {
  std::vector<std::string> strings;
  const PropertyList::Array* elements = array == nullptr ? nullptr : array->arrayIfArray();
  if (elements == nullptr) return strings;
  for (const PropertyList& element : *elements) {
    if (const std::string* text = element.stringIfString()) strings.push_back(*text);
  }
  return strings;
}

}  // namespace tavrin
