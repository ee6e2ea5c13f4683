#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavrin {

/// One entry of an autostart folder, as the Desktop Entry and Desktop Application Autostart
/// specifications of freedesktop.org read it.
class DesktopEntry {
 public:
  /// Reads the contents of a file; nothing when it is no desktop entry.
  static std::optional<DesktopEntry> parse(std::string_view contents);

  /// Whether the session starts the entry: not hidden, not switched off, for this desktop
  /// (`currentDesktop` as in $XDG_CURRENT_DESKTOP, names joined by ":"), and with its TryExec.
  bool isStartedIn(std::string_view currentDesktop) const;

  /// What Exec has as the program, a path or a name; nothing when Exec is missing or malformed.
  std::optional<std::string> command() const;

  /// The program that Exec names, an absolute path with links resolved; nothing when Exec is
  /// missing, malformed, or names no program that is there.
  std::optional<std::string> program() const;

 private:
  bool hidden_ = false;
  std::string tryExec_;
  std::string exec_;
  std::optional<std::string> onlyShowIn_;
  std::string notShowIn_;
};

/// The contents of an entry that starts `programPath`, an absolute path, under the given name.
std::string autostartEntry(const std::string& name, const std::string& programPath);

/// The contents of an entry that switches a system-wide one of the same file name off.
std::string hiddenAutostartEntry(const std::string& name);

}  // namespace tavrin
