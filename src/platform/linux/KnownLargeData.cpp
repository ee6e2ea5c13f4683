#include "platform/linux/KnownLargeData.h"

#include <glib.h>

#include <algorithm>
#include <utility>

namespace tavrin {

namespace {

struct ChecksumDeleter {
  void operator()(GChecksum* checksum) const { g_checksum_free(checksum); }
};

std::string sha256(const PropertyList::Data& bytes) {
  const std::unique_ptr<GChecksum, ChecksumDeleter> checksum(g_checksum_new(G_CHECKSUM_SHA256));
  g_checksum_update(checksum.get(), bytes.data(), static_cast<gssize>(bytes.size()));
  std::string digest(KnownLargeData::digestSize, '\0');
  gsize size = digest.size();
  g_checksum_get_digest(checksum.get(), reinterpret_cast<guint8*>(digest.data()), &size);
  return digest;
}

}  // namespace

std::string KnownLargeData::digestOf(const Bytes& bytes) {
  std::string digest = knownDigest(bytes);
  if (!digest.empty()) return digest;
  digest = sha256(*bytes);
  remember(bytes, digest);
  return digest;
}

std::string KnownLargeData::knownDigest(const Bytes& bytes) const {
  const std::lock_guard lock(mutex_);
  const auto found = byIdentity_.find(bytes.get());
  // Other data may have got the place of data that is gone.
  const bool isKnown = found != byIdentity_.end() && found->second.bytes.lock() == bytes;
  return isKnown ? found->second.digest : std::string();
}

KnownLargeData::Bytes KnownLargeData::bytesOf(const std::string& digest) const {
  const std::lock_guard lock(mutex_);
  const auto found = byDigest_.find(digest);
  return found == byDigest_.end() ? nullptr : found->second.lock();
}

void KnownLargeData::remember(const Bytes& bytes, const std::string& digest) {
  const std::lock_guard lock(mutex_);
  if (byIdentity_.size() >= enough_) forgetReleased();
  byIdentity_.insert_or_assign(bytes.get(), Known{bytes, digest});
  auto& first = byDigest_[digest];
  if (first.expired()) first = bytes;
}

void KnownLargeData::forgetReleased() {
  std::erase_if(byIdentity_, [](const auto& entry) { return entry.second.bytes.expired(); });
  std::erase_if(byDigest_, [](const auto& entry) { return entry.second.expired(); });
  enough_ = std::max(enough_, 2 * byIdentity_.size());
}

}  // namespace tavrin
