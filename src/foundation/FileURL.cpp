#include "foundation/FileURL.h"

#include <array>
#include <cctype>
#include <utility>

#include "foundation/PathString.h"

namespace tavrin {

namespace {

constexpr std::string_view hexDigits = "0123456789ABCDEF";

bool isAlphanumeric(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         (character >= '0' && character <= '9');
}

/// The characters of RFC 3986's "unreserved" and "reserved" sets; "%" is judged apart.
bool mayStandInURL(char character) {
  constexpr std::string_view marks = "-._~:/?#[]@!$&'()*+,;=";
  return isAlphanumeric(character) || marks.find(character) != std::string_view::npos;
}

/// The characters that a path holds unescaped; ";" is left out as Foundation does.
bool mayStandInPath(char character) {
  constexpr std::string_view marks = "-._~/:@!$&'()*+,=";
  return isAlphanumeric(character) || marks.find(character) != std::string_view::npos;
}

int hexValue(char digit) {
  if (digit >= '0' && digit <= '9') return digit - '0';
  if (digit >= 'a' && digit <= 'f') return digit - 'a' + 10;
  if (digit >= 'A' && digit <= 'F') return digit - 'A' + 10;
  return -1;
}

bool isEscape(std::string_view text) {
  return text.size() >= 3 && text[0] == '%' && hexValue(text[1]) >= 0 && hexValue(text[2]) >= 0;
}

bool isValidURL(std::string_view string) {
  for (std::size_t i = 0; i < string.size(); ++i) {
    if (string[i] == '%' ? !isEscape(string.substr(i)) : !mayStandInURL(string[i])) return false;
  }
  return !string.empty();
}

std::string decodingEscapes(std::string_view text) {
  std::string decoded;
  decoded.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '%') {
      decoded += text[i];
      continue;
    }
    decoded += static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2]));
    i += 2;
  }
  return decoded;
}

bool equalsIgnoringCase(std::string_view text, std::string_view lowercase) {
  if (text.size() != lowercase.size()) return false;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char character = text[i];
    const bool upper = character >= 'A' && character <= 'Z';
    if ((upper ? static_cast<char>(character - 'A' + 'a') : character) != lowercase[i])
      return false;
  }
  return true;
}

/// The scheme in front of the first ":"; empty when a "/", "?" or "#" comes before it.
std::string_view schemeOf(std::string_view string) {
  const auto end = string.find_first_of(":/?#");
  const bool hasScheme = end != std::string_view::npos && string[end] == ':';
  return hasScheme ? string.substr(0, end) : std::string_view();
}

/// Cuts "//host" off the front; false for a host that is not this machine.
bool cutLocalHost(std::string_view& hierarchicalPart) {
  if (!hierarchicalPart.starts_with("//")) return true;
  hierarchicalPart.remove_prefix(2);
  const auto end = std::min(hierarchicalPart.find('/'), hierarchicalPart.size());
  const std::string_view host = hierarchicalPart.substr(0, end);
  hierarchicalPart.remove_prefix(end);
  return host.empty() || equalsIgnoringCase(host, "localhost");
}

}  // namespace

FileURL::FileURL(std::string path) : path_(std::move(path)) {
  while (path_.size() > 1 && path_.back() == '/') path_.pop_back();
}

FileURL FileURL::fileURLWithPath(std::string_view path, std::string_view workingFolder) {
  if (!path.empty() && path.front() == '/') return FileURL(std::string(path));
  return FileURL(appendingPathComponent(workingFolder, path));
}

std::optional<FileURL> FileURL::urlWithString(std::string_view string) {
  if (!isValidURL(string)) return std::nullopt;
  const std::string_view scheme = schemeOf(string);
  if (!scheme.empty()) {
    if (!equalsIgnoringCase(scheme, "file")) return std::nullopt;
    string.remove_prefix(scheme.size() + 1);
  }
  string = string.substr(0, string.find_first_of("?#"));
  if (!cutLocalHost(string) || string.empty() || string.front() != '/') return std::nullopt;
  std::string path = decodingEscapes(string);
  if (path.find('\0') != std::string::npos) return std::nullopt;
  return FileURL(std::move(path));
}

std::string FileURL::absoluteString() const {
  std::string string = "file://";
  for (const char character : path_) {
    if (mayStandInPath(character)) {
      string += character;
      continue;
    }
    const auto byte = static_cast<unsigned char>(character);
    string += {'%', hexDigits[byte >> 4U], hexDigits[byte & 15U]};
  }
  return string;
}

std::vector<std::string> FileURL::pathComponents() const {
  return tavrin::pathComponents(path_);
}

std::string FileURL::lastPathComponent() const {
  return tavrin::lastPathComponent(path_);
}

FileURL FileURL::deletingLastPathComponent() const {
  return FileURL(tavrin::deletingLastPathComponent(path_));
}

FileURL FileURL::standardizingPath() const {
  return FileURL(tavrin::standardizingPath(path_));
}

std::vector<std::string_view> splitFileList(std::string_view list) {
  std::vector<std::string_view> pieces;
  std::size_t start = 0;
  while (true) {
    const auto end = list.find('|', start);
    pieces.push_back(list.substr(start, end - start));
    if (end == std::string_view::npos) return pieces;
    start = end + 1;
  }
}

std::string joinFileList(const std::vector<std::string>& paths) {
  std::string list;
  for (const std::string& path : paths) {
    if (!list.empty()) list += '|';
    list += FileURL::fileURLWithPath(path).absoluteString();
  }
  return list;
}

}  // namespace tavrin
