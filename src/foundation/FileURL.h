#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tavrin {

/// A URL of the scheme "file": an absolute path and the written form of it (RFC 8089).
class FileURL {
 public:
  /// The URL of a path as it stands. A relative path is taken relative to `workingFolder`, an
  /// absolute path; nothing else of the path is changed but trailing separators, which are cut.
  static FileURL fileURLWithPath(std::string_view path, std::string_view workingFolder = "/");

  /// Reads the written form as NSURL URLWithString: does (RFC 3986): every character must be one
  /// that a URL may hold and every "%" must begin a valid escape. Escapes are decoded byte by byte,
  /// so a path need not be UTF-8; query and fragment are no part of the path. Nothing for an
  /// invalid string, another scheme than "file", a host other than "localhost", an empty or
  /// relative path, and a path with a NUL byte. A string without a scheme is read as its path.
  static std::optional<FileURL> urlWithString(std::string_view string);

  /// The absolute path, without trailing separator unless it is "/".
  const std::string& path() const { return path_; }

  /// The written form, every byte escaped that a path segment may not hold: "file:///tmp".
  std::string absoluteString() const;

  /// The components of the path; the first is "/".
  std::vector<std::string> pathComponents() const;

  std::string lastPathComponent() const;

  /// The URL of the parent; "/" stays "/".
  FileURL deletingLastPathComponent() const;

  /// The URL without "." and ".." (see standardizingPath).
  FileURL standardizingPath() const;

  bool operator==(const FileURL&) const = default;

 private:
  explicit FileURL(std::string path);
  std::string path_;
};

/// The pieces of a file list string, split at "|" (NSString componentsSeparatedByString:). An empty
/// string has one empty piece.
std::vector<std::string_view> splitFileList(std::string_view list);

/// A file list string of paths: their written URLs joined by "|".
std::string joinFileList(const std::vector<std::string>& paths);

}  // namespace tavrin
