#include <algorithm>
#include <cstdint>

#include "fuzz/Require.h"
#include "platform/linux/PartialRecord.h"

namespace tavrin::fuzz {

namespace {

void read(std::string_view contents) {
  const auto record = partialRecordFrom(contents);
  if (!record) return;
  require(record->written() == contents, "a record has one form only");
  require(record->name.find('/') == std::string::npos, "an item to remove is in its folder");
  require(record->nameToReturnTo.find('/') == std::string::npos,
          "an item to return stays in its folder");
  require(record->name.starts_with(".tavrin-"), "an item to remove is a partial one");
}

/// A record of a folder with the path, cut off or changed at a byte; what follows the path is the
/// name to return to.
void damage(std::uint8_t position, std::uint8_t change, std::string_view path) {
  const auto end = std::min(path.find('\0'), path.size());
  std::string name(path.substr(std::min(end + 1, path.size())));
  std::erase_if(name, [](char byte) { return byte == '\0' || byte == '/'; });
  if (name == "." || name == "..") name.clear();
  const PartialRecord record{"1234567", ".tavrin-0123456789abcdef.partial",
                             std::string(path.substr(0, end)), name};
  std::string contents = record.written();
  require(partialRecordFrom(contents) == record, "a record says what it said");
  const std::size_t place = position % contents.size();
  require(!partialRecordFrom(std::string_view(contents).substr(0, place)),
          "a record that is cut off is none");
  contents[place] = static_cast<char>(contents[place] ^ change);
  read(contents);
}

}  // namespace

}  // namespace tavrin::fuzz

/// A file as it is or, after a zero, where and how a record is damaged, and the path in it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  if (size > 3 && bytes[0] == 0) {
    tavrin::fuzz::damage(bytes[1], bytes[2], text.substr(3));
  } else {
    tavrin::fuzz::read(text);
  }
  return 0;
}
