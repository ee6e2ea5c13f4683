#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "fuzz/Require.h"
#include "platform/linux/DesktopEntry.h"

namespace tavrin::fuzz {

namespace {

/// As the session starts the entries of a folder, whoever has written them.
void readForeign(std::string_view text) {
  const auto entry = DesktopEntry::parse(text);
  if (!entry) return;
  const bool isStarted = entry->isStartedIn("GNOME:ubuntu");
  require(entry->isStartedIn("GNOME:ubuntu") == isStarted, "an entry is started or not");
  entry->isStartedIn("");
  const auto program = entry->program();
  require(!program || program->starts_with('/'), "a program has an absolute path");
}

/// What is written for a program of any path and name.
void requireWrittenIsRead(const std::string& name, const std::string& path) {
  const auto entry = DesktopEntry::parse(autostartEntry(name, path));
  require(entry.has_value(), "an entry that was written is one");
  require(entry->isStartedIn("KDE"), "an entry that was written is started");
  require(entry->command() == path, "an entry starts the program that it was written for");
  const auto hidden = DesktopEntry::parse(hiddenAutostartEntry(name));
  require(hidden && !hidden->isStartedIn("KDE"), "an entry that is switched off is not started");
}

}  // namespace

}  // namespace tavrin::fuzz

/// Programs are not looked for.
extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
  ::setenv("PATH", "/nonexistent", 1);  // NOLINT(concurrency-mt-unsafe)
  return 0;
}

/// The first byte says whether a file follows, or a name, a NUL byte, and a path.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(bytes) + 1, size - 1);
  if (bytes[0] % 2 == 0) {
    tavrin::fuzz::readForeign(text);
    return 0;
  }
  const auto end = std::min(text.find('\0'), text.size());
  std::string path = "/" + std::string(text.substr(std::min(end + 1, text.size())));
  std::erase(path, '\0');
  tavrin::fuzz::requireWrittenIsRead(std::string(text.substr(0, end)), path);
  return 0;
}
