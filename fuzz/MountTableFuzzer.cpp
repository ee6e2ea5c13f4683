#include <algorithm>
#include <cstdint>
#include <sstream>

#include "fuzz/Require.h"
#include "platform/linux/panel/MountedVolumes.h"

namespace tavrin::fuzz {

namespace {

std::vector<std::string> volumesOf(const std::string& table) {
  std::istringstream mounts(table);
  return mountedVolumes(mounts);
}

void readForeign(const std::string& table) {
  auto volumes = volumesOf(table);
  for (const std::string& path : volumes) {
    const bool isVolume =
        path.starts_with("/media/") || path.starts_with("/mnt/") || path.starts_with("/run/media/");
    require(isVolume, "a volume is where volumes are");
  }
  std::sort(volumes.begin(), volumes.end());
  require(std::adjacent_find(volumes.begin(), volumes.end()) == volumes.end(),
          "a volume is listed once");
}

/// As the kernel writes it, which escapes what would end a field (mangle_path).
std::string escaped(std::string_view path) {
  std::string text;
  for (const char byte : path) {
    if (std::string_view(" \t\n\\#").find(byte) == std::string_view::npos) {
      text += byte;
      continue;
    }
    const auto code = static_cast<unsigned char>(byte);
    text += {'\\', static_cast<char>('0' + code / 64), static_cast<char>('0' + code / 8 % 8),
             static_cast<char>('0' + code % 8)};
  }
  return text;
}

void requireFound(std::string name) {
  std::erase_if(name, [](char byte) { return byte == '\0' || byte == '/'; });
  if (name.empty()) return;
  const std::string path = "/media/" + name;
  const auto volumes = volumesOf("/dev/sdb1 " + escaped(path) + " ext4 rw,relatime 0 0\n");
  require(volumes == std::vector{path}, "a volume of any name is found");
}

}  // namespace

}  // namespace tavrin::fuzz

/// The first byte says whether a table follows or the name of a volume.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size == 0) return 0;
  const std::string text(bytes + 1, bytes + size);
  if (bytes[0] % 2 == 0) {
    tavrin::fuzz::readForeign(text);
  } else {
    tavrin::fuzz::requireFound(text);
  }
  return 0;
}
