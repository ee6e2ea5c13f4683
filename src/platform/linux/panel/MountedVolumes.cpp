#include "platform/linux/panel/MountedVolumes.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "foundation/PathString.h"

namespace tavrin {

namespace {

bool isOctalEscape(std::string_view text) {
  return text.size() >= 4 && text[0] == '\\' &&
         std::all_of(text.begin() + 1, text.begin() + 4,
                     [](char digit) { return digit >= '0' && digit <= '7'; });
}

std::string unescaped(std::string_view field) {
  std::string text;
  for (std::size_t at = 0; at < field.size();) {
    if (!isOctalEscape(field.substr(at))) {
      text += field[at++];
      continue;
    }
    const int code = (field[at + 1] - '0') * 64 + (field[at + 2] - '0') * 8 + (field[at + 3] - '0');
    text += static_cast<char>(code);
    at += 4;
  }
  return text;
}

/// The second field of a line. Blanks and tabs part them; other white space stands for itself.
std::string_view mountPointOf(std::string_view line) {
  constexpr std::string_view blanks = " \t";
  const auto start = line.find_first_not_of(blanks, line.find_first_of(blanks));
  if (start == line.npos) return {};
  line.remove_prefix(start);
  return line.substr(0, line.find_first_of(blanks));
}

bool isUserVolume(const std::string& path) {
  constexpr std::array parents{"/media", "/mnt", "/run/media"};
  return std::any_of(parents.begin(), parents.end(), [&path](const char* parent) {
    return path != parent && isPathAtOrBelow(path, parent);
  });
}

}  // namespace

std::vector<std::string> mountedVolumes(std::istream& mounts) {
  std::vector<std::string> volumes;
  for (std::string line; std::getline(mounts, line);) {
    const std::string mountPoint = unescaped(mountPointOf(line));
    const bool isNew = std::find(volumes.begin(), volumes.end(), mountPoint) == volumes.end();
    if (isNew && isUserVolume(mountPoint)) volumes.push_back(mountPoint);
  }
  return volumes;
}

}  // namespace tavrin
