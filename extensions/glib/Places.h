#pragma once

#include <string>

namespace tavrin {

/// Whether what lies there is a file of the disk under another URI, as in a list of recent files.
/// Neither the trash nor the desktop's icons nor a list of volumes is such a place: what leads to
/// the home folder or to the whole disk must not be taken for it.
bool isInListOfFiles(const std::string& uri);

/// The URI of the user's desktop folder; "" when there is none.
std::string desktopFolder();

}  // namespace tavrin
