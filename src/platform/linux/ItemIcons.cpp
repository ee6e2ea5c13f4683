#include "platform/linux/ItemIcons.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "foundation/FileURL.h"
#include "foundation/PathString.h"
#include "platform/linux/DirectoryFile.h"
#include "platform/linux/FileCreation.h"
#include "platform/linux/FileReplacement.h"
#include "platform/linux/IconMetadata.h"
#include "platform/linux/ItemRedraw.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

constexpr std::size_t largestDirectoryFile = std::size_t{1} << 20U;

/// The item itself (O_PATH), be it a symbolic link; the one that is covered and no other.
Result<FileDescriptor> openItem(const LocatedItem& located) {
  constexpr int flags = O_PATH | O_NOFOLLOW | O_CLOEXEC;
  FileDescriptor item(::openat(located.parent.get(), located.name.c_str(), flags));
  if (!item) return systemError("open", located.path);
  if (!located.required) return item;
  const auto identity = identityAt(item.get(), "");
  if (!identity) return identity.error();
  if (identity.value() != *located.required) return systemError("open", located.path, EACCES);
  return item;
}

bool isFolder(const FileDescriptor& item) {
  struct stat status {};
  return ::fstat(item.get(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// The text of a ".directory"; "" when there is none.
Result<std::string> readText(const ItemReference& file) {
  const auto contents = readFile(file, largestDirectoryFile);
  if (contents) return std::string(contents.value().begin(), contents.value().end());
  if (contents.error().code == std::errc::no_such_file_or_directory) return std::string();
  return contents.error();
}

/// Gives a ".directory" the icon, or takes it away; a file that holds nothing more goes.
Status writeIcon(const ItemReference& file, const std::string& iconPath,
                 const PartialItems& partials) {
  const auto text = readText(file);
  if (!text) return text.error();
  const bool isRemoval = iconPath.empty();
  const std::string changed = isRemoval ? directoryFileWithoutIcon(text.value())
                                        : directoryFileWithIcon(text.value(), iconPath);
  if (changed == text.value()) return success();
  if (!changed.empty()) {
    return replaceFile(file, PropertyList::Data(changed.begin(), changed.end()), partials);
  }
  if (::unlinkat(file.parentDescriptor, file.name.c_str(), 0) == 0) return success();
  return systemError("remove", file.path);
}

}  // namespace

ItemIcons::ItemIcons(const StartedScopes& scopes, const PartialItems& partials,
                     FileManager& fileManager, const std::string& groupIdentifier, Log& log)
    : scopes_(scopes), partials_(partials), store_(fileManager, groupIdentifier), log_(log) {}

bool ItemIcons::setIcon(const Image* image, const std::string& path) {
  const auto failed = [&](const SystemError& cause) {
    log_.write("icon of " + path + " not changed: " + cause.describe());
    return false;
  };
  const auto located = scopes_.locate(FileURL::fileURLWithPath(path).path(), ScopeAccess::Change);
  if (!located) return failed(located.error());
  const auto item = openItem(located.value());
  if (!item) return failed(item.error());
  std::string iconPath;
  if (image != nullptr) {
    auto kept = store_.keep(*image);
    if (!kept) return failed(kept.error());
    iconPath = std::move(kept).value();
  }
  const std::string& realPath = located.value().path;
  bool isSet = setMetadata(realPath, iconPath);
  if (isFolder(item.value())) {
    isSet = setDirectoryFile(item.value().get(), realPath, iconPath) || isSet;
  }
  redrawItem(located.value().parent.get(), located.value().name);
  return isSet;
}

bool ItemIcons::setMetadata(const std::string& path, const std::string& iconPath) {
  const Status set = setIconMetadata(path, iconPath);
  if (set) return true;
  const bool isMissing = set.error().code == std::errc::not_supported;
  if (isMissing && std::exchange(isMissingMetadataNoted_, true)) return false;
  log_.write("icon not kept for GIO's file managers: " + set.error().describe());
  return false;
}

bool ItemIcons::setDirectoryFile(int folder, const std::string& path, const std::string& iconPath) {
  const ItemReference file{folder, directoryFileName,
                           appendingPathComponent(path, directoryFileName)};
  const Status written = writeIcon(file, iconPath, partials_);
  if (written) return true;
  log_.write("icon not kept in the folder: " + written.error().describe());
  return false;
}

}  // namespace tavrin
