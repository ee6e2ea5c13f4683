#include <algorithm>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/Require.h"
#include "platform/linux/DirectoryFile.h"
#include "platform/linux/GLibPointers.h"

namespace tavrin::fuzz {

namespace {

constexpr std::string_view head = "[Desktop Entry]";
constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(blanks);
  if (first == text.npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

bool setsIcon(std::string_view line) {
  const auto equals = line.find('=');
  if (equals == line.npos) return false;
  const std::string_view name = trimmed(line.substr(0, equals));
  return name == "Icon" || name.starts_with("Icon[");
}

/// The lines, without their breaks, that are neither the icon's nor the head of its group.
std::vector<std::string_view> otherLinesOf(std::string_view text) {
  std::vector<std::string_view> others;
  bool isInGroup = false;
  bool isFirst = true;
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    const bool hasMark = std::exchange(isFirst, false) && line.starts_with(byteOrderMark);
    const std::string_view marked = trimmed(line.substr(hasMark ? byteOrderMark.size() : 0));
    const bool isHead = marked == head;
    if (marked.starts_with('[')) isInGroup = isHead;
    if (isHead || (isInGroup && setsIcon(line))) continue;
    others.push_back(line.ends_with('\r') ? line.substr(0, line.size() - 1) : line);
  }
  return others;
}

/// What a reader of such files finds, where it takes the file at all.
void requireIconIsRead(const std::string& text, const std::string& iconPath) {
  // GLib takes a form feed for a blank, which the format does not.
  if (text.find('\f') != std::string::npos) return;
  const GLibPointer<GKeyFile> file(g_key_file_new());
  if (g_key_file_load_from_data(file.get(), text.data(), text.size(), G_KEY_FILE_NONE, nullptr) ==
      FALSE) {
    return;
  }
  const GLibPointer<char> icon(g_key_file_get_string(file.get(), "Desktop Entry", "Icon", nullptr));
  if (g_utf8_validate(iconPath.data(), static_cast<gssize>(iconPath.size()), nullptr) == FALSE) {
    return;
  }
  require(icon != nullptr && icon.get() == iconPath, "readers find the icon that was set");
}

bool areBlank(const std::vector<std::string_view>& lines) {
  return std::all_of(lines.begin(), lines.end(), [](std::string_view line) {
    return trimmed(line).empty() || trimmed(line) == byteOrderMark;
  });
}

void run(const std::string& iconPath, std::string_view text) {
  const std::string with = directoryFileWithIcon(text, iconPath);
  require(directoryFileWithIcon(with, iconPath) == with, "setting an icon again changes nothing");
  require(otherLinesOf(with) == otherLinesOf(text), "setting an icon keeps every other line");
  requireIconIsRead(with, iconPath);
  const std::string without = directoryFileWithoutIcon(with);
  require(directoryFileWithoutIcon(without) == without, "there is no icon to remove twice");
  const auto left = otherLinesOf(without);
  require(left == otherLinesOf(text) || (without.empty() && areBlank(otherLinesOf(text))),
          "removing an icon keeps every other line");
}

}  // namespace

}  // namespace tavrin::fuzz

/// The path of an icon, a NUL byte, and a file.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  const auto end = std::min(text.find('\0'), text.size());
  tavrin::fuzz::run("/" + std::string(text.substr(0, end)),
                    text.substr(std::min(end + 1, text.size())));
  return 0;
}
