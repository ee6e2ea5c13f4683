#pragma once

#include "foundation/Result.h"
#include "platform/linux/FileOperation.h"
#include "platform/linux/ItemReference.h"

namespace tavrin {

class PartialItems;

/// Copies an item, a folder with all that is in it, to a name that is free. The copy grows as a
/// partial item beside its destination and gets its name when it is whole. Kept are modes, owner
/// and group as far as the user may set them (set-id bits are dropped where not, as cp does), times
/// in nanoseconds, extended attributes, access control lists, hard links inside the tree, holes,
/// links, pipes, sockets and device nodes. Attributes the destination does not know are left out.
/// Items that vanish from the source meanwhile are not in the copy.
///
/// Fails with file_exists when the name is taken, with invalid_argument when the destination lies
/// in the source, with operation_canceled when `operation` is cancelled, else with the first
/// failure; no part of the copy is left then.
Status copyItem(const ItemReference& source, const ItemReference& destination,
                PartialItems& partials, FileOperation& operation);

/// Copies a regular file as copyItem does and puts the copy in the place of what has the name: by
/// one rename, after its bytes are durable, so that a power cut leaves the old item or the copy. A
/// link is replaced itself. Fails with is_a_directory when the source or what has the name is a
/// folder, with too_many_symbolic_link_levels when the source is a link, with invalid_argument when
/// it is of another kind, without blocking, else with the first failure; the old item stands then.
Status copyFileReplacing(const ItemReference& source, const ItemReference& destination,
                         PartialItems& partials, FileOperation& operation);

}  // namespace tavrin
