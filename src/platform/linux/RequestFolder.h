#pragma once

#include <string>

#include "foundation/PropertyList.h"
#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"

namespace tavrin {

/// A request file that is removed with this object. Its lock tells that somebody waits for it.
class RequestFile {
 public:
  RequestFile(FileDescriptor folder, FileDescriptor locked, const std::string& folderPath,
              std::string name);
  RequestFile(RequestFile&&) noexcept = default;
  RequestFile& operator=(RequestFile&&) = delete;
  RequestFile(const RequestFile&) = delete;
  RequestFile& operator=(const RequestFile&) = delete;
  ~RequestFile();

  /// The file's absolute path.
  const std::string& path() const { return path_; }

 private:
  FileDescriptor folder_;
  FileDescriptor locked_;
  std::string name_;
  std::string path_;
};

/// Writes a request, a dictionary of request_key, to "app.tavrin.Tavrin/requests" in
/// $XDG_RUNTIME_DIR, or where that is not set, in the cache folder: into a new file of a name of
/// its own that only this user can read (mode 0600), in a folder that only this user can enter
/// (0700). What is missing of the folder is made; requests there that are older than ten minutes
/// and that nobody waits for, because their senders have ended before the host answered, are
/// removed. Fails with permission_denied when a folder on the way belongs to somebody else, can be
/// changed by others, or is a symbolic link; with file_too_large for a request that no host would
/// read.
Result<RequestFile> writeRequestFile(const PropertyList& request);

}  // namespace tavrin
