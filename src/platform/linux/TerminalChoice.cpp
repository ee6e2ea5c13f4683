#include "platform/linux/TerminalChoice.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <utility>

#include "foundation/PathString.h"
#include "platform/linux/GLibPointers.h"

namespace tavrin {

namespace {

constexpr std::string_view folderPlaceholder = "%f";
/// Debian's terminals have a script of this ending that understands the options of xterm alone.
constexpr std::string_view wrapperEnding = ".wrapper";

/// The table's row of a terminal; one that it does not have is empty.
using TerminalRow = PropertyList;

std::string environmentText(const char* name) {
  // Nothing in this program changes the environment beside other threads.
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe)
  return value == nullptr ? std::string() : value;
}

std::string findProgram(const std::string& name) {
  const GLibPointer<char> found(name.empty() ? nullptr : g_find_program_in_path(name.c_str()));
  return found ? found.get() : std::string();
}

/// The program behind links and behind the wrapper of a terminal.
std::string terminalBehind(const std::string& program) {
  const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(program.c_str(), nullptr),
                                                             std::free);
  std::string behind = resolved ? resolved.get() : program;
  if (!behind.ends_with(wrapperEnding)) return behind;
  behind.erase(behind.size() - wrapperEnding.size());
  return ::access(behind.c_str(), X_OK) == 0 ? behind : program;
}

std::vector<TerminalRow> rowsOf(ResourceTable& terminals) {
  const PropertyList* table = terminals.find({"Terminals"});
  const PropertyList::Array* rows = table == nullptr ? nullptr : table->arrayIfArray();
  return rows == nullptr ? std::vector<TerminalRow>() : *rows;
}

bool isOfDesktop(const TerminalRow& row, const std::string& currentDesktop) {
  const std::vector<std::string> desktops = stringsOf(row.find("Desktops"));
  return std::ranges::any_of(desktops, [&](const std::string& desktop) {
    return (":" + currentDesktop + ":").find(":" + desktop + ":") != std::string::npos;
  });
}

std::vector<std::string> argumentsFor(const TerminalRow& row, const std::string& place,
                                      const std::string& folder) {
  const PropertyList* atPlace = row.find(place);
  std::vector<std::string> arguments = stringsOf(atPlace != nullptr ? atPlace : row.find("Window"));
  for (std::string& argument : arguments) {
    const std::size_t position = argument.find(folderPlaceholder);
    if (position == std::string::npos) continue;
    argument.replace(position, folderPlaceholder.size(), folder);
  }
  return arguments;
}

/// The terminal that the user or the system has chosen; "" when neither has.
std::string chosenProgram() {
  const std::string program = findProgram(environmentText("TERMINAL"));
  return program.empty() ? findProgram("x-terminal-emulator") : program;
}

TerminalCommand commandOf(const std::string& program, const std::vector<TerminalRow>& rows,
                          const std::string& place, const std::string& folder) {
  for (const std::string& path : {program, terminalBehind(program)}) {
    const std::string name = lastPathComponent(path);
    const auto row = std::ranges::find_if(
        rows, [&](const TerminalRow& each) { return each.stringForKey("Program") == name; });
    if (row != rows.end()) return {path, argumentsFor(*row, place, folder)};
  }
  return {program, {}};
}

}  // namespace

std::optional<TerminalCommand> chooseTerminal(ResourceTable& terminals, const std::string& place,
                                              const std::string& folder) {
  std::vector<TerminalRow> rows = rowsOf(terminals);
  const std::string chosen = chosenProgram();
  if (!chosen.empty()) return commandOf(chosen, rows, place, folder);
  const std::string desktop = environmentText("XDG_CURRENT_DESKTOP");
  std::stable_partition(rows.begin(), rows.end(),
                        [&desktop](const TerminalRow& row) { return isOfDesktop(row, desktop); });
  for (const TerminalRow& row : rows) {
    std::string program = findProgram(row.stringForKey("Program"));
    if (program.empty()) continue;
    return TerminalCommand{std::move(program), argumentsFor(row, place, folder)};
  }
  return std::nullopt;
}

}  // namespace tavrin
