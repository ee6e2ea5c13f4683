#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/linux/ResourceTable.h"

namespace tavrin {

/// A terminal emulator and the words that make it open a folder.
struct TerminalCommand {
  /// The absolute path of the program.
  std::string program;
  std::vector<std::string> arguments;
};

/// How to open `folder`, an absolute path that is handed over as it is written, at `place`, which
/// is "Tab" or "Window". `terminals` is the resource "Terminals.plist". The terminal is the one
/// that $TERMINAL names, or else the system's x-terminal-emulator, or else the first installed one
/// of the table's, those of the current desktop before others. One that cannot open a tab opens a
/// window; one that the table does not know has no arguments: it is to be started in the folder, as
/// all are. Nothing when no terminal is installed.
std::optional<TerminalCommand> chooseTerminal(ResourceTable& terminals, const std::string& place,
                                              const std::string& folder);

}  // namespace tavrin
