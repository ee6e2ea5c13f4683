#include <algorithm>
#include <string_view>

#include "app/ActionRequest.h"
#include "foundation/FileURL.h"
#include "fuzz/Require.h"
#include "fuzz/SamePropertyList.h"
#include "platform/linux/LinuxPropertyListSerialization.h"

namespace tavrin::fuzz {

namespace {

/// As the actions take the pieces of a list.
void readList(const std::optional<std::string>& list) {
  for (const std::string_view piece : fileListItems(list)) {
    const auto url = FileURL::urlWithString(piece);
    if (!url) continue;
    require(url->path().starts_with('/'), "an item has an absolute path");
    require(url->path().find('\0') == std::string::npos, "a path has no NUL byte");
  }
}

bool isBinary(std::string_view text) {
  return text.starts_with("bplist00");
}

void run(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  if (isBinary(text) && !smallListFromBinary(bytes, size)) return;
  const PropertyList::Data data(bytes, bytes + size);
  const auto list = LinuxPropertyListSerialization().propertyListFromData(data);
  if (!list) {
    require(!isBinary(text), "a list that was read once is read again");
    return;
  }
  const auto request = ActionRequest::requestWithPropertyList(list.value());
  if (!request) return;
  for (const char* key : request_key::strings) {
    const auto value = request.value().stringForKey(key);
    const bool isThere = list.value().find(key) != nullptr;
    require(value.has_value() == isThere, "a request has the strings of its file");
    require(value.value_or("") == list.value().stringForKey(key), "strings stay as they are");
  }
  require(list.value().find(request_key::tag) != nullptr || request.value().tag() == 0,
          "a request without a tag has 0");
  readList(request.value().stringForKey(request_key::selectedFilesUrl));
  readList(request.value().stringForKey(request_key::cuttingFilesURL));
}

}  // namespace

}  // namespace tavrin::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  tavrin::fuzz::run(bytes, size);
  return 0;
}
