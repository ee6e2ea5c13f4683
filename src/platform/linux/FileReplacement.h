#pragma once

#include "foundation/PropertyList.h"
#include "foundation/Result.h"
#include "platform/linux/ItemReference.h"
#include "platform/linux/PartialItems.h"

namespace tavrin {

/// Gives a file new contents, or makes it, in one step: at every moment, also after a power cut,
/// the old or the new ones stand under the name, whole. The rights and the owner of a file that is
/// there stay. Fails with permission_denied when that file may not be written, and leaves anything
/// else than a regular file as it is: a symbolic link with too_many_symbolic_link_levels, the rest
/// with invalid_argument.
Status replaceFile(const ItemReference& item, const PropertyList::Data& contents,
                   const PartialItems& partials);

}  // namespace tavrin
