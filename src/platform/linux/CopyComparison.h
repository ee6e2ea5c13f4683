#pragma once

#include "foundation/Result.h"
#include "platform/linux/FolderEntry.h"
#include "platform/linux/TreeRemoval.h"

namespace tavrin {

/// True when `copy` is what a copy of `source` would be now: the same type, and the same size and
/// modification time of a file (cut to `granularity`), target of a link, number of a device. Fails
/// with is_a_directory for folders.
Result<bool> isHeldUnchanged(const FolderEntry& source, const FolderEntry& copy,
                             TimeGranularity granularity);

}  // namespace tavrin
