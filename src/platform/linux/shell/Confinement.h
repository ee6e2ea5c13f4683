#pragma once

#include <string>
#include <vector>

namespace tavrin::shell {

/// Confines this process and its children for good: new files and changes below the open folder
/// `folder` only, no network, no service of the session, no other process, no terminal, and no
/// privileges by running a program. Returns what of this the system does not offer, a sentence
/// each.
std::vector<std::string> confine(int folder, const std::string& moduleFolder);

}  // namespace tavrin::shell
