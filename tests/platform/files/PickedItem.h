#pragma once

#include <string>

#include "platform/linux/LinuxSecurityScope.h"
#include "platform/linux/SymlinkResolution.h"

namespace tavrin {

/// What a folder chooser does when the user picks the item at a path. Fails when nothing stands
/// there.
inline Status grantByPicking(LinuxSecurityScope& scopes, const std::string& path) {
  const auto item = ScopeGrant::open(pathByResolvingSymlinks(path));
  if (!item) return item.error();
  scopes.grantByPicking(item.value());
  return success();
}

/// What a save panel does when the user picks a name, there or not, in a folder that is there.
inline Status grantPlaceByPicking(LinuxSecurityScope& scopes, const std::string& path) {
  const auto folder =
      ScopeGrant::open(pathByResolvingSymlinks(path.substr(0, path.find_last_of('/') + 1)));
  if (!folder) return folder.error();
  scopes.grantPlaceByPicking({folder.value(), path.substr(path.find_last_of('/') + 1)});
  return success();
}

}  // namespace tavrin
