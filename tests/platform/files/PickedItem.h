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

}  // namespace tavrin
