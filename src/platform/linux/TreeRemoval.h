#pragma once

#include "foundation/Result.h"
#include "platform/linux/FileOperation.h"
#include "platform/linux/ItemReference.h"

namespace tavrin {

/// Removes an item, a folder with all that is in it. Links are removed as links. A file system that
/// is mounted on the item or inside it is not entered: device_or_resource_busy. Stops at the first
/// item that cannot be removed and fails with its cause, or with operation_canceled when
/// `operation` is cancelled.
Status removeItem(const ItemReference& item, FileOperation& operation);

/// How exactly the file system of a copy keeps times: what lies between two moments it can tell
/// apart, in nanoseconds (1 for most, 2,000,000,000 for FAT).
using TimeGranularity = long long;

/// Removes of a source what its copy holds unchanged: files of the same size and modification time
/// (cut to `granularity`), links to the same target, equal nodes, and the folders that are empty
/// then. All else stays, and the result is device_or_resource_busy with the path of the first item
/// that stayed. Fails with the cause at the first item that cannot be removed.
Status removeCopiedItem(const ItemReference& source, const ItemReference& copy,
                        TimeGranularity granularity, FileOperation& operation);

}  // namespace tavrin
