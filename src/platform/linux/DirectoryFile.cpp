#include "platform/linux/DirectoryFile.h"

#include <algorithm>
#include <vector>

namespace tavrin {

namespace {

constexpr std::string_view group = "[Desktop Entry]";
constexpr std::string_view key = "Icon";
constexpr std::string_view blanks = " \t\r\n";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

enum class LineKind { Blank, DesktopEntry, OtherGroup, Icon, Other };

struct Line {
  /// With its line break, which the last one may lack.
  std::string text;
  LineKind kind = LineKind::Other;
};

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// "Icon" and its translations, "Icon[de]".
bool setsIcon(std::string_view line) {
  const auto equals = line.find('=');
  if (equals == std::string_view::npos) return false;
  const std::string_view name = trimmed(line.substr(0, equals));
  return name.substr(0, name.find('[')) == key;
}

LineKind kindOf(std::string_view line, bool isInGroup) {
  line = trimmed(line);
  if (line.empty()) return LineKind::Blank;
  if (line == group) return LineKind::DesktopEntry;
  if (line.front() == '[') return LineKind::OtherGroup;
  return isInGroup && setsIcon(line) ? LineKind::Icon : LineKind::Other;
}

/// Without the mark that a file may begin with.
std::string_view withoutMark(std::string_view line) {
  if (line.starts_with(byteOrderMark)) line.remove_prefix(byteOrderMark.size());
  return line;
}

std::vector<Line> linesOf(std::string_view text) {
  std::vector<Line> lines;
  bool isInGroup = false;
  while (!text.empty()) {
    const std::string_view line = text.substr(0, std::min(text.find('\n'), text.size() - 1) + 1);
    const LineKind kind = kindOf(lines.empty() ? withoutMark(line) : line, isInGroup);
    if (kind == LineKind::DesktopEntry) isInGroup = true;
    if (kind == LineKind::OtherGroup) isInGroup = false;
    lines.push_back({std::string(line), kind});
    text.remove_prefix(line.size());
  }
  return lines;
}

std::string join(const std::vector<Line>& lines) {
  std::string text;
  for (const Line& line : lines) text += line.text;
  return text;
}

std::string_view lineBreakOf(const std::vector<Line>& lines) {
  const bool hasCarriageReturn = !lines.empty() && (lines.front().text.ends_with("\r\n") ||
                                                    lines.front().text.ends_with('\r'));
  return hasCarriageReturn ? "\r\n" : "\n";
}

/// Ends a last line that has no line break.
void endLine(std::string& text, std::string_view lineBreak) {
  if (text.ends_with('\n')) return;
  text += text.ends_with('\r') ? "\n" : lineBreak;
}

/// A string value as the format writes it.
std::string escaped(std::string_view value) {
  std::string text;
  for (const char character : value) {
    switch (character) {
      case '\\':
        text += "\\\\";
        break;
      case '\n':
        text += "\\n";
        break;
      case '\r':
        text += "\\r";
        break;
      case '\t':
        text += "\\t";
        break;
      default:
        text += character;
    }
  }
  return text;
}

bool isIcon(const Line& line) {
  return line.kind == LineKind::Icon;
}

/// The place for a new icon: behind the head of the group, which is made when it is missing.
std::vector<Line>::iterator placeForIcon(std::vector<Line>& lines, std::string_view lineBreak) {
  const auto head = std::find_if(lines.begin(), lines.end(), [](const Line& line) {
    return line.kind == LineKind::DesktopEntry;
  });
  const auto before = head == lines.end() ? lines.end() : head + 1;
  if (before != lines.begin()) endLine(std::prev(before)->text, lineBreak);
  if (head != lines.end()) return before;
  lines.push_back({std::string(group) + std::string(lineBreak), LineKind::DesktopEntry});
  return lines.end();
}

}  // namespace

std::string directoryFileWithIcon(std::string_view text, std::string_view iconPath) {
  std::vector<Line> lines = linesOf(text);
  const std::string lineBreak(lineBreakOf(lines));
  auto place = std::find_if(lines.begin(), lines.end(), isIcon);
  const auto index = place - lines.begin();
  if (place != lines.end()) {
    std::erase_if(lines, isIcon);
    place = lines.begin() + index;
  } else {
    place = placeForIcon(lines, lineBreak);
  }
  lines.insert(place, {std::string(key) + "=" + escaped(iconPath) + lineBreak, LineKind::Icon});
  return join(lines);
}

std::string directoryFileWithoutIcon(std::string_view text) {
  std::vector<Line> lines = linesOf(text);
  if (std::erase_if(lines, isIcon) == 0) return std::string(text);
  const bool isEmpty = std::all_of(lines.begin(), lines.end(), [](const Line& line) {
    return line.kind == LineKind::Blank || line.kind == LineKind::DesktopEntry;
  });
  return isEmpty ? std::string() : join(lines);
}

}  // namespace tavrin
