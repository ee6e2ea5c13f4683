#pragma once

namespace tavrin::shell {

/// Makes every file system read-only for this process and its children, but for what lies below the
/// open folder `folder`. By a mount namespace of its own, where the system lets users have one; the
/// process keeps the privilege to change it. Returns 0, or the errno value of why not: then
/// something may be read-only already, which also keeps the rest from being changed.
int mountAllElseReadOnly(int folder);

}  // namespace tavrin::shell
