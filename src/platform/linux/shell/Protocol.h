#pragma once

/// What the host and its helper `tavrin-shell` agree on. The helper's arguments are the script and
/// the folder that holds the helper and the tools.
namespace tavrin::shell_protocol {

/// The helper's name in the folder of the program's modules.
inline constexpr const char* helperName = "tavrin-shell";
/// The folder of the private tools, below that of the modules.
inline constexpr const char* toolsFolderName = "tools";

/// Where the helper finds the pipe that it reports to.
inline constexpr int reportDescriptor = 3;
/// Where it finds the folder that the script may change.
inline constexpr int folderDescriptor = 4;

// A report is lines: a kind, and its text.
/// A part of the confinement that the system does not offer, as a sentence.
inline constexpr char missingPart = 'm';
/// The script could not be started; the text is the errno value.
inline constexpr char notStarted = 'e';

}  // namespace tavrin::shell_protocol
