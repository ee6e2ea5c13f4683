#include "platform/linux/NewItemTraits.h"

namespace tavrin {
namespace {

constexpr mode_t rights = S_IRWXU | S_IRWXG | S_IRWXO;
constexpr mode_t modeBits = 07777;

}  // namespace

mode_t NewItemTraits::modeToAskFor(const struct stat& source) const {
  const mode_t wanted = source.st_mode & rights;
  return (wanted & neededRights_) == neededRights_ ? wanted : neededRights_;
}

bool NewItemTraits::learn(int descriptor, mode_t askedFor) {
  if (user_ && (askedFor & ~triedBits_) == 0) return true;
  struct stat status = {};
  if (::fstat(descriptor, &status) != 0) return false;
  user_ = status.st_uid;
  group_ = status.st_gid;
  triedBits_ |= askedFor;
  grantedBits_ = (grantedBits_ & ~askedFor) | (status.st_mode & askedFor);
  hasOwnModes_ = hasOwnModes_ || (status.st_mode & rights & ~askedFor) != 0;
  return true;
}

MetadataInPlace NewItemTraits::inPlace(const struct stat& source, mode_t askedFor) const {
  return {source.st_uid == user_ && source.st_gid == group_,
          !hasOwnModes_ && (source.st_mode & modeBits) == (askedFor & grantedBits_)};
}

}  // namespace tavrin
