#include "platform/linux/Bookmark.h"

#include <glib.h>

#include <algorithm>
#include <array>
#include <memory>

#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

using Data = PropertyList::Data;

constexpr std::array<std::uint8_t, 4> mark = {'T', 'v', 'B', 'm'};
constexpr std::uint8_t version = 1;
constexpr std::size_t headLength = mark.size() + sizeof version;
constexpr std::size_t numberLength = sizeof(std::uint64_t);
constexpr std::size_t pathStart = headLength + 3 * numberLength;
constexpr std::size_t sealLength = 32;
using Seal = std::array<std::uint8_t, sealLength>;

struct HmacDeleter {
  void operator()(GHmac* hmac) const { g_hmac_unref(hmac); }
};

Seal sealOf(const std::uint8_t* bytes, std::size_t count, const BookmarkKey::Bytes& key) {
  const std::unique_ptr<GHmac, HmacDeleter> hmac(
      g_hmac_new(G_CHECKSUM_SHA256, key.data(), key.size()));
  g_hmac_update(hmac.get(), bytes, static_cast<gssize>(count));
  Seal seal{};
  gsize length = seal.size();
  g_hmac_get_digest(hmac.get(), seal.data(), &length);
  return seal;
}

/// Takes the same time wherever the first difference is.
bool isSame(const Seal& seal, const std::uint8_t* other) {
  unsigned difference = 0;
  for (std::size_t index = 0; index < seal.size(); ++index) {
    difference |= static_cast<unsigned>(seal[index] ^ other[index]);
  }
  return difference == 0;
}

void appendNumber(Data& data, std::uint64_t number) {
  for (std::size_t index = 0; index < numberLength; ++index) {
    data.push_back(static_cast<std::uint8_t>(number >> (8 * index)));
  }
}

std::uint64_t numberAt(const Data& data, std::size_t position) {
  std::uint64_t number = 0;
  for (std::size_t index = 0; index < numberLength; ++index) {
    number |= std::uint64_t{data[position + index]} << (8 * index);
  }
  return number;
}

SystemError refused(const char* why) {
  return systemError("resolve", std::string("bookmark (") + why + ")", std::errc::bad_message);
}

}  // namespace

Data sealBookmark(const Bookmark& bookmark, const BookmarkKey::Bytes& key) {
  Data data(mark.begin(), mark.end());
  data.push_back(version);
  appendNumber(data, bookmark.identity.device);
  appendNumber(data, bookmark.identity.inode);
  appendNumber(data, static_cast<std::uint64_t>(bookmark.identity.birthTime));
  data.insert(data.end(), bookmark.path.begin(), bookmark.path.end());
  const Seal seal = sealOf(data.data(), data.size(), key);
  data.insert(data.end(), seal.begin(), seal.end());
  return data;
}

Result<Bookmark> unsealBookmark(const Data& sealed, const BookmarkKey::Bytes& key) {
  if (sealed.size() < headLength || !std::equal(mark.begin(), mark.end(), sealed.begin())) {
    return refused("not a bookmark");
  }
  if (sealed[mark.size()] != version) return refused("unknown version");
  if (sealed.size() <= pathStart + sealLength) return refused("too short");
  const std::size_t contentLength = sealed.size() - sealLength;
  if (!isSame(sealOf(sealed.data(), contentLength, key), sealed.data() + contentLength)) {
    return refused("damaged, forged or another user's");
  }
  Bookmark bookmark;
  bookmark.identity.device = numberAt(sealed, headLength);
  bookmark.identity.inode = numberAt(sealed, headLength + numberLength);
  bookmark.identity.birthTime =
      static_cast<std::int64_t>(numberAt(sealed, headLength + 2 * numberLength));
  bookmark.path.assign(sealed.begin() + pathStart,
                       sealed.begin() + static_cast<std::ptrdiff_t>(contentLength));
  return bookmark;
}

}  // namespace tavrin
