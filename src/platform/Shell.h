#pragma once

#include <string>

#include "foundation/Result.h"

namespace tavrin {

/// Runs shell scripts, as the C library's system().
class Shell {
 public:
  virtual ~Shell() = default;

  /// Runs `script` by the standard shell and waits for its end. Command names are looked up in the
  /// folder of the program's own tools first, then in the system's.
  ///
  /// The script, and whatever it starts, can change nothing but what lies below `writableFolder`
  /// (an absolute path, covered by a started security scope), reads little else than programs and
  /// their libraries, and reaches neither the network nor another process. Names of files enter
  /// scripts with no more than blanks and parentheses escaped, so a script is not trusted. What of
  /// this the running system cannot enforce is told to the log once.
  ///
  /// Returns the shell's exit status; 128 and the signal's number when a signal ended it. Fails
  /// when the script could not be started: with permission_denied when no scope covers the folder,
  /// with invalid_argument for a script with a NUL byte, else with the system's cause. The
  /// first lines that the script prints go to the log.
  virtual Result<int> system(const std::string& script, const std::string& writableFolder) = 0;

  /// Runs `command`, a text of the program's own, by the standard shell with all that the user may
  /// do, and returns what it prints to its standard output, read until all who may print have
  /// closed it. "" when it could not be started, which reaches the log. Nothing of files or users
  /// may stand in the command.
  virtual std::string outputOfCommand(const std::string& command) = 0;
};

}  // namespace tavrin
