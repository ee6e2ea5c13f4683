#pragma once

#include <map>
#include <string>

namespace tavrin {

/// Where the user has the well-known folders (xdg-user-dirs), by their English places: "~/Pictures"
/// may be "~/Bilder". Without those that are there, and those that the user does without.
std::map<std::string, std::string> placesOfUserFolders();

}  // namespace tavrin
