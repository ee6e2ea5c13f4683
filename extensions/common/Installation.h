#pragma once

#include <string>

namespace tavrin {

/// The prefix that this module is installed below, absolute and without links; "" when the system
/// does not say where the module comes from. `prefixFromModule` is the way there from the folder
/// of the module, relative.
std::string installationPrefix(const std::string& prefixFromModule);

}  // namespace tavrin
