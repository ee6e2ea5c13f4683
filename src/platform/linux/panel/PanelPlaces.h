#pragma once

#include <QString>
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

}  // namespace tavrin
