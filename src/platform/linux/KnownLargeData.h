#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>

#include "foundation/PropertyList.h"

namespace tavrin {

/// The large data of settings that somebody in this process holds, found by its digest and by its
/// identity, so that what is held is neither digested nor read again. It holds no data itself.
/// Any thread may use it.
class KnownLargeData {
 public:
  using Bytes = std::shared_ptr<const PropertyList::Data>;

  /// The SHA-256 of the bytes (FIPS 180-4), `digestSize` bytes. Equal digests are equal bytes.
  std::string digestOf(const Bytes& bytes);
  static constexpr std::size_t digestSize = 32;

  /// The bytes of a digest; null when nobody holds them.
  Bytes bytesOf(const std::string& digest) const;

  /// From now on the bytes are known to have that digest.
  void remember(const Bytes& bytes, const std::string& digest);

 private:
  struct Known {
    std::weak_ptr<const PropertyList::Data> bytes;
    std::string digest;
  };

  std::string knownDigest(const Bytes& bytes) const;
  void forgetReleased();

  mutable std::mutex mutex_;
  std::unordered_map<const PropertyList::Data*, Known> byIdentity_;
  std::unordered_map<std::string, std::weak_ptr<const PropertyList::Data>> byDigest_;
  /// How many may be known before the released ones are looked for.
  std::size_t enough_ = 64;
};

}  // namespace tavrin
