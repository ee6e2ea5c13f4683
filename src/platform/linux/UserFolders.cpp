#include "platform/linux/UserFolders.h"

#include <glib.h>

#include <array>

#include "foundation/PathHelpers.h"

namespace tavrin {

namespace {

struct UserFolder {
  const char* englishPlace;
  GUserDirectory directory;
};

constexpr std::array userFolders{
    UserFolder{"~/Desktop", G_USER_DIRECTORY_DESKTOP},
    UserFolder{"~/Documents", G_USER_DIRECTORY_DOCUMENTS},
    UserFolder{"~/Downloads", G_USER_DIRECTORY_DOWNLOAD},
    UserFolder{"~/Music", G_USER_DIRECTORY_MUSIC},
    UserFolder{"~/Pictures", G_USER_DIRECTORY_PICTURES},
    UserFolder{"~/Videos", G_USER_DIRECTORY_VIDEOS},
};

}  // namespace

std::map<std::string, std::string> placesOfUserFolders() {
  std::map<std::string, std::string> places;
  for (const auto& [englishPlace, directory] : userFolders) {
    const char* path = g_get_user_special_dir(directory);
    if (path == nullptr) continue;
    // They are told below the home of the environment.
    std::string place = abbreviatingHome(path, g_get_home_dir());
    // A folder that the user does without is said to be the home.
    if (place != "~" && place != "~/" && place != englishPlace) places[englishPlace] = place;
  }
  return places;
}

}  // namespace tavrin
