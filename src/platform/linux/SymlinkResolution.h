#pragma once

#include <string>

namespace tavrin {

/// An absolute path of any length with its symbolic links resolved as far as its components exist
/// and can be searched; what follows stays as it is written. A component that leads in a circle
/// stays as it is, with all that follows it. "." and "..", of the path and of links, are resolved
/// as the kernel does, from where the links before them lead. A relative path is returned
/// unchanged.
std::string pathByResolvingSymlinks(const std::string& path);

}  // namespace tavrin
