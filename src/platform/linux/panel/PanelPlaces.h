#pragma once

#include <QString>
#include <istream>
#include <string>
#include <vector>

#include "platform/linux/panel/PanelIcons.h"

namespace tavrin {

/// A folder that a panel offers beside its list.
struct PanelPlace {
  QString name;
  /// Absolute.
  std::string path;
  /// The icon theme's name for it, and what is drawn without one.
  const char* themeIcon;
  PanelIcons::Symbol symbol;
};

/// The user's folders as far as they exist, the whole disk, and the mounted volumes.
std::vector<PanelPlace> panelPlaces();

/// The icon theme's name for a folder, an absolute path without "." and ".."; "folder" for one that
/// is none of the above. The folder need not exist.
const char* themeIconOfFolder(const std::string& path);

/// The mount points below /media, /mnt and /run/media, in the order of `mounts`, which is in the
/// format of /proc/self/mounts (fstab(5): blanks and other special bytes are octal escapes).
std::vector<std::string> mountedVolumes(std::istream& mounts);

}  // namespace tavrin
