#include <cstdint>

#include "app/CommandLine.h"
#include "foundation/FileURL.h"
#include "foundation/PathHelpers.h"
#include "foundation/PathString.h"
#include "fuzz/Require.h"

namespace tavrin::fuzz {

namespace {

void requireRoundTrip(const FileURL& url) {
  const std::string written = url.absoluteString();
  const auto again = FileURL::urlWithString(written);
  require(again == url, "a written URL reads as it was");
  require(written.find('|') == std::string::npos, "a written URL fits into a file list");
}

void readURL(std::string_view text) {
  const auto url = FileURL::urlWithString(text);
  if (!url) return;
  const std::string& path = url->path();
  require(path.starts_with('/') && (path == "/" || !path.ends_with('/')), "a path is absolute");
  require(path.find('\0') == std::string::npos, "a path has no NUL byte");
  requireRoundTrip(*url);
}

void readList(std::string_view text) {
  std::string joined;
  std::vector<std::string> paths;
  const auto pieces = splitFileList(text);
  for (std::size_t index = 0; index < pieces.size(); ++index) {
    if (index > 0) joined += '|';
    joined += pieces[index];
    readURL(pieces[index]);
    if (const auto url = FileURL::urlWithString(pieces[index])) paths.push_back(url->path());
  }
  require(joined == text, "a list is its pieces");
  const std::string list = joinFileList(paths);
  const auto again = splitFileList(list);
  require(paths.empty() || again.size() == paths.size(), "a list has each path once");
  for (std::size_t index = 0; index < paths.size(); ++index) {
    require(FileURL::urlWithString(again[index])->path() == paths[index], "a list keeps its paths");
  }
}

void readPath(std::string_view text) {
  if (text.find('\0') != text.npos) return;
  const FileURL url = FileURL::fileURLWithPath(text, "/home/ada");
  requireRoundTrip(url);
  const FileURL standard = url.standardizingPath();
  require(standard.standardizingPath() == standard, "a standard path stays as it is");
  require(isPathAtOrBelow(standard.path(), "/"), "a standard path is below the root");
  for (const std::string& component : standard.pathComponents()) {
    require(component != "." && component != "..", "a standard path has no steps");
  }
  const FileURL parent = standard.deletingLastPathComponent();
  require(isPathAtOrBelow(standard.path(), parent.path()), "an item is below its folder");
  if (standard.path() != "/") {
    require(appendingPathComponent(parent.path(), standard.lastPathComponent()) == standard.path(),
            "a path is its folder and its name");
  }
  const std::string extension = pathExtension(standard.path());
  if (!extension.empty()) {
    require(deletingPathExtension(standard.path()) + "." + extension == standard.path(),
            "a path is what is before its extension, and that");
  }
}

void readHome(std::string_view text) {
  constexpr std::string_view home = "/home/ada";
  const std::string expanded = expandingHome(text, home);
  if (!text.starts_with("~/")) return;
  require(abbreviatingHome(expanded, home) == text, "a path in the home reads as it was written");
}

void readCommandLine(std::string_view text) {
  std::vector<std::string_view> words;
  for (;;) {
    const auto end = text.find('\0');
    words.push_back(text.substr(0, end));
    if (end == text.npos) break;
    text.remove_prefix(end + 1);
  }
  const CommandLine line = parseCommandLine(words, "/home/ada");
  for (const std::string& file : line.files) {
    require(file.starts_with('/'), "files have absolute paths");
  }
}

void run(std::uint8_t choice, std::string_view text) {
  switch (choice % 4) {
    case 0:
      return readList(text);
    case 1:
      return readPath(text);
    case 2:
      return readHome(text);
    default:
      return readCommandLine(text);
  }
}

}  // namespace

}  // namespace tavrin::fuzz

/// The first byte says what the rest is taken for.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  if (size == 0) return 0;
  tavrin::fuzz::run(bytes[0], {reinterpret_cast<const char*>(bytes) + 1, size - 1});
  return 0;
}
