#pragma once

#include <istream>
#include <string>
#include <vector>

namespace tavrin {

/// The mount points below /media, /mnt and /run/media, in the order of `mounts`, which is in the
/// format of /proc/self/mounts (fstab(5): blanks and other special bytes are octal escapes).
std::vector<std::string> mountedVolumes(std::istream& mounts);

}  // namespace tavrin
