#include "platform/linux/HiddenNameChanges.h"

#include <unordered_map>

#include "platform/linux/TextLines.h"

namespace tavrin {

namespace {

constexpr char hideMark = '+';
constexpr char showMark = '-';

}  // namespace

void HiddenNameChanges::add(std::string_view name, IsHidden isHidden) {
  changes_ += isHidden == IsHidden::Yes ? hideMark : showMark;
  changes_ += name;
  changes_ += '\n';
}

std::string HiddenNameChanges::appliedTo(std::string_view list) const {
  // What is still to be done for each name; a name that the list has already is done.
  std::unordered_map<std::string_view, char> marks;
  forEachLine(changes_, [&](std::string_view line) { marks[line.substr(1)] = line[0]; });
  std::string changed;
  changed.reserve(list.size() + changes_.size());
  bool hasName = false;
  const auto keep = [&](std::string_view line) {
    hasName = hasName || !line.empty();
    changed += line;
    changed += '\n';
  };
  forEachLine(list, [&](std::string_view line) {
    const auto mark = marks.find(line);
    if (mark != marks.end() && mark->second == showMark) return;
    if (mark != marks.end()) marks.erase(mark);
    keep(line);
  });
  forEachLine(changes_, [&](std::string_view line) {
    const auto mark = marks.find(line.substr(1));
    if (mark == marks.end() || mark->second == showMark) return;
    marks.erase(mark);
    keep(line.substr(1));
  });
  return hasName ? changed : std::string();
}

std::vector<std::string> HiddenNameChanges::names(std::size_t count) const {
  std::vector<std::string> names;
  forEachLine(changes_, [&](std::string_view line) {
    if (names.size() < count) names.emplace_back(line.substr(1));
  });
  return names;
}

}  // namespace tavrin
