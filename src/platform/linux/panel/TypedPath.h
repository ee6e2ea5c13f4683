#pragma once

#include <QString>
#include <optional>

#include "foundation/FileURL.h"

namespace tavrin {

/// The existing item that a typed path names: absolute, relative to `folder`, or below the
/// account's home folder for "~" and "~/...". Nothing when there is no such item.
std::optional<FileURL> existingItemAtTypedPath(const QString& text, const FileURL& folder);

/// Whether there is a folder, or a link to one, at the URL.
bool isFolderPath(const FileURL& url);

}  // namespace tavrin
