#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// What the program was started for.
struct CommandLine {
  enum class Mode {
    Run,
    /// Started by the session bus, which brings the request itself.
    Service,
    /// Started by the host, to show the preferences window alone.
    PreferencesWindow,
    Help,
    Version,
    /// `complaint` says what is wrong.
    Invalid,
  };
  Mode mode = Mode::Run;
  /// Absolute paths.
  std::vector<std::string> files = {};
  std::string complaint = {};
};

/// Reads the arguments (without the program's name): files as paths, relative ones relative to
/// `workingFolder`, or as URLs of the scheme "file"; "--" ends the options.
CommandLine parseCommandLine(const std::vector<std::string_view>& arguments,
                             std::string_view workingFolder);

/// What --help prints.
std::string_view commandLineHelp();

}  // namespace tavrin
