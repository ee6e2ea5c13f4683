#include "platform/linux/LinuxLog.h"

#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>

namespace tavrin {

namespace {

// Room for any real path; a request may hold what is none.
constexpr std::size_t longestMessage = 8192;

bool isControlCharacter(char character) {
  const auto byte = static_cast<unsigned char>(character);
  return byte < 0x20 || byte == 0x7f;
}

std::string withoutControlCharacters(std::string_view message) {
  std::string line;
  line.reserve(message.size());
  for (const char character : message) {
    if (!isControlCharacter(character)) {
      line += character;
      continue;
    }
    std::array<char, 5> escape{};
    std::snprintf(escape.data(), escape.size(), "\\x%02x", static_cast<unsigned char>(character));
    line += escape.data();
  }
  return line;
}

}  // namespace

void LinuxLog::write(std::string_view message) {
  const std::string_view shown = message.substr(0, longestMessage);
  const std::string line = "tavrin: " + withoutControlCharacters(shown) +
                           (shown.size() < message.size() ? " ...\n" : "\n");
  // One call per line, so that lines of several threads never mix; a closed log is nobody's fault.
  [[maybe_unused]] const ssize_t written = ::write(STDERR_FILENO, line.data(), line.size());
}

}  // namespace tavrin
