#include "platform/linux/DesktopEntry.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "platform/linux/GLibPointers.h"

namespace tavrin {

namespace {

constexpr const char* group = G_KEY_FILE_DESKTOP_GROUP;

/// The value's escapes undone. g_key_file_get_string refuses what is no UTF-8, which a path may be.
std::string unescaped(std::string_view raw) {
  std::string text;
  for (std::size_t index = 0; index < raw.size(); ++index) {
    if (raw[index] != '\\' || index + 1 == raw.size()) {
      text += raw[index];
      continue;
    }
    switch (const char escape = raw[++index]) {
      case 's':
        text += ' ';
        break;
      case 'n':
        text += '\n';
        break;
      case 't':
        text += '\t';
        break;
      case 'r':
        text += '\r';
        break;
      case '\\':
        text += '\\';
        break;
      default:
        text += '\\';
        text += escape;
    }
  }
  return text;
}

std::optional<std::string> valueOf(GKeyFile* file, const char* key) {
  const GLibPointer<char> raw(g_key_file_get_value(file, group, key, nullptr));
  if (!raw) return std::nullopt;
  return unescaped(raw.get());
}

/// Whether one of the names in `desktops`, joined by ";", is one of those in `currentDesktop`.
bool namesDesktop(std::string_view desktops, std::string_view currentDesktop) {
  const std::string wanted = ";" + std::string(desktops) + ";";
  while (!currentDesktop.empty()) {
    const std::string name(currentDesktop.substr(0, currentDesktop.find(':')));
    if (!name.empty() && wanted.find(";" + name + ";") != std::string::npos) return true;
    currentDesktop.remove_prefix(std::min(name.size() + 1, currentDesktop.size()));
  }
  return false;
}

std::optional<std::string> findProgram(const std::string& name) {
  const GLibPointer<char> found(g_find_program_in_path(name.c_str()));
  if (!found) return std::nullopt;
  const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(found.get(), nullptr),
                                                             std::free);
  if (!resolved) return std::nullopt;
  return std::string(resolved.get());
}

/// An argument of Exec with its field codes' escape undone.
std::string withoutFieldCodeEscapes(std::string_view argument) {
  std::string text;
  for (std::size_t index = 0; index < argument.size(); ++index) {
    text += argument[index];
    if (argument.substr(index, 2) == "%%") ++index;
  }
  return text;
}

/// A path as an argument of Exec: quoted, with the characters escaped that quotes do not cover.
std::string quotedForExec(std::string_view path) {
  std::string text = "\"";
  for (const char character : path) {
    if (std::string_view("\"`$\\").find(character) != std::string_view::npos) text += '\\';
    if (character == '%') text += '%';
    text += character;
  }
  return text + '"';
}

/// The escapes of a string value, which come on top of those of Exec.
std::string escaped(std::string_view text) {
  std::string value;
  for (const char character : text) {
    if (character == '\\') {
      value += "\\\\";
    } else if (character == '\n') {
      value += "\\n";
    } else if (character == '\r') {
      value += "\\r";
    } else if (character == '\t') {
      value += "\\t";
    } else {
      value += character;
    }
  }
  return value;
}

}  // namespace

std::optional<DesktopEntry> DesktopEntry::parse(std::string_view contents) {
  const GLibPointer<GKeyFile> file(g_key_file_new());
  if (contents.empty() ||
      g_key_file_load_from_data(file.get(), contents.data(), contents.size(), G_KEY_FILE_NONE,
                                nullptr) == FALSE ||
      g_key_file_has_group(file.get(), group) == FALSE) {
    return std::nullopt;
  }
  DesktopEntry entry;
  entry.hidden_ = valueOf(file.get(), G_KEY_FILE_DESKTOP_KEY_HIDDEN) == "true" ||
                  valueOf(file.get(), "X-GNOME-Autostart-enabled") == "false";
  entry.tryExec_ = valueOf(file.get(), G_KEY_FILE_DESKTOP_KEY_TRY_EXEC).value_or("");
  entry.exec_ = valueOf(file.get(), G_KEY_FILE_DESKTOP_KEY_EXEC).value_or("");
  entry.onlyShowIn_ = valueOf(file.get(), G_KEY_FILE_DESKTOP_KEY_ONLY_SHOW_IN);
  entry.notShowIn_ = valueOf(file.get(), G_KEY_FILE_DESKTOP_KEY_NOT_SHOW_IN).value_or("");
  return entry;
}

bool DesktopEntry::isStartedIn(std::string_view currentDesktop) const {
  if (hidden_ || namesDesktop(notShowIn_, currentDesktop)) return false;
  if (onlyShowIn_ && !namesDesktop(*onlyShowIn_, currentDesktop)) return false;
  return tryExec_.empty() || findProgram(tryExec_).has_value();
}

std::optional<std::string> DesktopEntry::command() const {
  char** parsed = nullptr;
  if (g_shell_parse_argv(exec_.c_str(), nullptr, &parsed, nullptr) == FALSE) return std::nullopt;
  const GLibPointer<char*> arguments(parsed);
  return withoutFieldCodeEscapes(arguments.get()[0]);
}

std::optional<std::string> DesktopEntry::program() const {
  const auto named = command();
  return named ? findProgram(*named) : std::nullopt;
}

std::string autostartEntry(const std::string& name, const std::string& programPath) {
  return "[Desktop Entry]\nType=Application\nName=" + escaped(name) +
         "\nExec=" + escaped(quotedForExec(programPath)) + "\n";
}

std::string hiddenAutostartEntry(const std::string& name) {
  return "[Desktop Entry]\nType=Application\nName=" + escaped(name) + "\nHidden=true\n";
}

}  // namespace tavrin
