#include "platform/linux/PasteboardFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <utility>

#include "foundation/PathString.h"
#include "platform/linux/FileCreation.h"
#include "platform/linux/ItemNaming.h"
#include "platform/linux/PrivateFolder.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

constexpr std::size_t largestContents = std::size_t{256} << 20U;

Result<FileDescriptor> openPasteboardFolder(const std::string& path) {
  Result<FileDescriptor> folder = openPrivateFolder(path);
  if (folder && ::fchmod(folder.value().get(), S_IRWXU) != 0) {
    return systemError("protect folder", path);
  }
  return folder;
}

}  // namespace

PasteboardFile::PasteboardFile(std::string folder, std::string name)
    : folder_(std::move(folder)), name_(std::move(name)) {}

std::string PasteboardFile::path() const {
  return appendingPathComponent(folder_, name_);
}

Status PasteboardFile::replace(const std::string& contents) const {
  if (folder_.empty()) return systemError("write pasteboard", name_, ENOENT);
  const Result<FileDescriptor> folder = openPasteboardFolder(folder_);
  if (!folder) return folder.error();
  const std::string part = randomHiddenName("pasteboard");
  Status written = createFile({folder.value().get(), part, path()},
                              PropertyList::Data(contents.begin(), contents.end()), nullptr);
  if (!written) return written;
  if (::renameat(folder.value().get(), part.c_str(), folder.value().get(), name_.c_str()) == 0) {
    return written;
  }
  written = systemError("write pasteboard", path());
  ::unlinkat(folder.value().get(), part.c_str(), 0);
  return written;
}

void PasteboardFile::remove() const {
  if (!folder_.empty()) ::unlink(path().c_str());
}

std::optional<std::string> PasteboardFile::contents() const {
  if (folder_.empty()) return std::nullopt;
  const FileDescriptor folder(::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder) return std::nullopt;
  const auto read = readFile({folder.get(), name_, path()}, largestContents);
  if (!read) return std::nullopt;
  return std::string(read.value().begin(), read.value().end());
}

}  // namespace tavrin
