#include "platform/linux/panel/TypedPath.h"

#include <QFile>
#include <filesystem>
#include <string>

#include "foundation/PathString.h"
#include "platform/linux/LinuxDirectories.h"

namespace tavrin {

std::optional<FileURL> existingItemAtTypedPath(const QString& text, const FileURL& folder) {
  std::string path = QFile::encodeName(text).toStdString();
  // The text of a line edit never names the byte 0, which would cut the path short.
  if (path.empty() || path.find('\0') != std::string::npos) return std::nullopt;
  if (path == "~" || path.rfind("~/", 0) == 0)
    path = currentAccount().homeDirectory + path.substr(1);
  if (path.front() != '/') path = appendingPathComponent(folder.path(), path);
  FileURL url = FileURL::fileURLWithPath(standardizingPath(path));
  std::error_code missing;
  const auto status = std::filesystem::symlink_status(url.path(), missing);
  if (!std::filesystem::exists(status)) return std::nullopt;
  return url;
}

bool isFolderPath(const FileURL& url) {
  std::error_code missing;
  return std::filesystem::is_directory(url.path(), missing);
}

}  // namespace tavrin
