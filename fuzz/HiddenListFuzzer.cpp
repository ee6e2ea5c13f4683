#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "fuzz/Require.h"
#include "platform/linux/HiddenNameChanges.h"

namespace tavrin::fuzz {

namespace {

using Lines = std::vector<std::string>;

Lines linesOf(std::string_view text) {
  Lines lines;
  while (!text.empty()) {
    const auto end = std::min(text.find('\n'), text.size());
    lines.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return lines;
}

bool has(const Lines& lines, const std::string& line) {
  return std::find(lines.begin(), lines.end(), line) != lines.end();
}

struct Change {
  std::string name;
  IsHidden isHidden;
};

std::vector<Change> changesFrom(std::string_view text) {
  std::vector<Change> changes;
  for (const std::string& line : linesOf(text)) {
    if (line.size() < 2) continue;
    changes.push_back({line.substr(1), line.front() == '-' ? IsHidden::No : IsHidden::Yes});
  }
  return changes;
}

/// The list after the changes, made in the simplest way.
Lines changed(Lines lines, const std::vector<Change>& changes) {
  std::map<std::string, IsHidden> last;
  for (const Change& change : changes) last[change.name] = change.isHidden;
  std::erase_if(lines, [&last](const std::string& line) {
    const auto change = last.find(line);
    return change != last.end() && change->second == IsHidden::No;
  });
  for (const Change& change : changes) {
    if (last[change.name] == IsHidden::Yes && !has(lines, change.name)) {
      lines.push_back(change.name);
    }
  }
  return lines;
}

bool areNoNames(const Lines& lines) {
  return std::all_of(lines.begin(), lines.end(), [](const auto& line) { return line.empty(); });
}

std::string applied(const std::vector<Change>& changes, std::string_view list) {
  HiddenNameChanges applied;
  for (const Change& change : changes) applied.add(change.name, change.isHidden);
  return applied.appliedTo(list);
}

/// Hides the names that the list does not have, and shows them again.
void requireWayBack(const std::vector<Change>& changes, const std::string& list) {
  const Lines lines = linesOf(list);
  std::vector<Change> there;
  std::vector<Change> back;
  for (const Change& change : changes) {
    if (has(lines, change.name)) continue;
    there.push_back({change.name, IsHidden::Yes});
    back.push_back({change.name, IsHidden::No});
  }
  const Lines again = linesOf(applied(back, applied(there, list)));
  require(again == (areNoNames(lines) ? Lines() : lines),
          "hiding and showing gives the old list back");
}

void run(const std::vector<Change>& changes, const std::string& list) {
  const std::string result = applied(changes, list);
  const Lines expected = changed(linesOf(list), changes);
  require(linesOf(result) == (areNoNames(expected) ? Lines() : expected),
          "a list has its names, and its other lines as they were");
  require(result.empty() || result.ends_with('\n'), "the last line has an end");
  require(applied(changes, result) == result, "changes that were made change nothing");
  requireWayBack(changes, list);
}

}  // namespace

}  // namespace tavrin::fuzz

/// Changes, a line each that begins with "-" for showing, a NUL byte, and a list.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  const auto end = std::min(text.find('\0'), text.size());
  tavrin::fuzz::run(tavrin::fuzz::changesFrom(text.substr(0, end)),
                    std::string(text.substr(std::min(end + 1, text.size()))));
  return 0;
}
