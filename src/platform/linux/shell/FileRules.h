#pragma once

#include <string>

namespace tavrin::shell {

/// Lets this process and its children, from now on, run and read what tools need (the system's
/// programs, libraries and settings, and `moduleFolder`), read and change what lies below the open
/// folder `folder`, and touch no other file's contents or name. By the kernel's Landlock. Returns
/// 0, or the errno value of why there is no Landlock.
int confineToFolder(int folder, const std::string& moduleFolder);

}  // namespace tavrin::shell
