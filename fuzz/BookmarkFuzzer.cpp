#include "fuzz/Require.h"
#include "platform/linux/Bookmark.h"

namespace tavrin::fuzz {

namespace {

constexpr BookmarkKey::Bytes key = {1, 2, 3, 5, 8, 13, 21, 34};
constexpr std::size_t changeLength = 3;
constexpr std::size_t identityLength = 24;

std::uint64_t numberAt(const std::uint8_t* bytes) {
  std::uint64_t number = 0;
  for (std::size_t index = 0; index < 8; ++index) number = (number << 8U) | bytes[index];
  return number;
}

void readForeign(const PropertyList::Data& bytes) {
  const auto bookmark = unsealBookmark(bytes, key);
  if (!bookmark) return;
  require(sealBookmark(bookmark.value(), key) == bytes, "a bookmark has one form only");
}

/// The first bytes say what is changed in a sealed bookmark, those after them what it says.
void changeSealed(const std::uint8_t* bytes, std::size_t size) {
  if (size <= changeLength + identityLength) return;
  const std::uint8_t* said = bytes + changeLength;
  const Bookmark bookmark{
      std::string(said + identityLength, bytes + size),
      {numberAt(said), numberAt(said + 8), static_cast<std::int64_t>(numberAt(said + 16))}};
  PropertyList::Data sealed = sealBookmark(bookmark, key);
  const auto unsealed = unsealBookmark(sealed, key);
  require(unsealed && unsealed.value() == bookmark, "a bookmark says what it said");
  const std::size_t position = (bytes[0] * std::size_t{256} + bytes[1]) % sealed.size();
  if (bytes[2] == 0) {
    sealed.resize(position);
  } else {
    sealed[position] ^= bytes[2];
  }
  require(!unsealBookmark(sealed, key), "a changed bookmark is refused");
}

}  // namespace

}  // namespace tavrin::fuzz

/// The first byte says what the rest is taken for.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size == 0) return 0;
  if (bytes[0] % 2 == 0) {
    tavrin::fuzz::readForeign({bytes + 1, bytes + size});
  } else {
    tavrin::fuzz::changeSealed(bytes + 1, size - 1);
  }
  return 0;
}
