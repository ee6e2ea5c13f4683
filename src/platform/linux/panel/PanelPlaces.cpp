#include "platform/linux/panel/PanelPlaces.h"

#include <QCoreApplication>
#include <QFile>
#include <QStandardPaths>
#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>

#include "foundation/PathString.h"
#include "foundation/Translatable.h"
#include "platform/linux/DisplayText.h"
#include "platform/linux/LinuxDirectories.h"
#include "platform/linux/panel/MountedVolumes.h"

namespace tavrin {

namespace {

struct StandardFolder {
  QStandardPaths::StandardLocation location;
  const char* name;
  const char* themeIcon;
};

constexpr std::array standardFolders{
    StandardFolder{QStandardPaths::DesktopLocation, translatable("Desktop"), "user-desktop"},
    StandardFolder{QStandardPaths::DocumentsLocation, translatable("Documents"),
                   "folder-documents"},
    StandardFolder{QStandardPaths::DownloadLocation, translatable("Downloads"), "folder-download"},
    StandardFolder{QStandardPaths::MusicLocation, translatable("Music"), "folder-music"},
    StandardFolder{QStandardPaths::PicturesLocation, translatable("Pictures"), "folder-pictures"},
    StandardFolder{QStandardPaths::MoviesLocation, translatable("Videos"), "folder-videos"},
};

/// Absolute; "" when the user has none.
std::string pathOf(const StandardFolder& folder) {
  return QFile::encodeName(QStandardPaths::writableLocation(folder.location)).toStdString();
}

bool isFolder(const std::string& path) {
  std::error_code unreachable;
  return std::filesystem::is_directory(path, unreachable);
}

}  // namespace

const char* themeIconOfFolder(const std::string& path) {
  if (path == currentAccount().homeDirectory) return "user-home";
  if (path == "/") return "drive-harddisk";
  const auto* const folder =
      std::find_if(standardFolders.begin(), standardFolders.end(),
                   [&path](const StandardFolder& candidate) { return pathOf(candidate) == path; });
  return folder == standardFolders.end() ? "folder" : folder->themeIcon;
}

std::vector<PanelPlace> panelPlaces() {
  const std::string home = currentAccount().homeDirectory;
  std::vector<PanelPlace> places{
      {QCoreApplication::translate("Tavrin", "Home"), home, "user-home", PanelIcons::Symbol::Home}};
  for (const StandardFolder& folder : standardFolders) {
    const std::string path = pathOf(folder);
    // A user folder that is switched off points to the home folder.
    if (path.empty() || path == home || !isFolder(path)) continue;
    places.push_back({QCoreApplication::translate("Tavrin", folder.name), path, folder.themeIcon,
                      PanelIcons::Symbol::Folder});
  }
  places.push_back({QCoreApplication::translate("Tavrin", "Computer"), "/", "computer",
                    PanelIcons::Symbol::Computer});
  std::ifstream mounts("/proc/self/mounts");
  for (const std::string& path : mountedVolumes(mounts)) {
    places.push_back(
        {displayName(lastPathComponent(path)), path, "drive-harddisk", PanelIcons::Symbol::Volume});
  }
  return places;
}

}  // namespace tavrin
