#pragma once

#include "foundation/Result.h"
#include "platform/linux/FileOperation.h"
#include "platform/linux/ItemReference.h"

namespace tavrin {

class PartialItems;

/// Moves an item to a name that is free: by one rename within a file system, else by a copy (see
/// copyItem) that is on the disk under its name before the source is removed.
///
/// Fails with file_exists when the name is taken, with invalid_argument when a folder would go into
/// itself; both are as before then. Across file systems, what came into the source or changed there
/// during the copy stays, with a number behind its name where that is taken by then (the source has
/// a hidden name while it is removed), and the move fails with device_or_resource_busy with both
/// standing; a source that the user may not empty, or with another file system mounted inside, is
/// not copied. A move that is cancelled before the copy has its name fails with operation_canceled
/// and leaves the source as it was.
Status moveItem(const ItemReference& source, const ItemReference& destination,
                PartialItems& partials, FileOperation& operation);

}  // namespace tavrin
