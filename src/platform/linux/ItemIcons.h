#pragma once

#include <string>

#include "foundation/Result.h"
#include "platform/FileManager.h"
#include "platform/Image.h"
#include "platform/Log.h"
#include "platform/linux/IconStore.h"
#include "platform/linux/PartialItems.h"
#include "platform/linux/StartedScopes.h"

namespace tavrin {

/// The icons that users give to items, as the file managers read them: in the user's metadata for
/// files and folders (GIO), and for folders in their file ".directory" (KIO). The image itself lies
/// in the program's own container.
class ItemIcons {
 public:
  /// All outlive this object. `groupIdentifier` names the container.
  ItemIcons(const StartedScopes& scopes, const PartialItems& partials, FileManager& fileManager,
            const std::string& groupIdentifier, Log& log);

  /// See Workspace::setIcon. Each failure is one line in the log; that the session keeps no
  /// metadata is told once.
  bool setIcon(const Image* image, const std::string& path);

 private:
  bool setMetadata(const std::string& path, const std::string& iconPath);
  bool setDirectoryFile(int folder, const std::string& path, const std::string& iconPath);

  const StartedScopes& scopes_;
  const PartialItems& partials_;
  IconStore store_;
  Log& log_;
  bool isMissingMetadataNoted_ = false;
};

}  // namespace tavrin
