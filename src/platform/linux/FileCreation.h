#pragma once

#include <sys/stat.h>

#include <cstddef>
#include <optional>

#include "foundation/PropertyList.h"
#include "foundation/Result.h"
#include "platform/linux/ItemReference.h"
#include "platform/linux/PartialItems.h"

namespace tavrin {

/// Creates a regular file with the given bytes and the rights the user gives new files. The name
/// appears when the file is whole; a name that is taken is file_exists. Where a process that is
/// killed in the middle could leave a partial item, on file systems without files that have no
/// name, `partials` knows of it; without `partials` it stays.
Status createFile(const ItemReference& item, const PropertyList::Data& contents,
                  const PartialItems* partials);

/// Creates a file as createFile does, or puts it in the place of what has the name: by one rename,
/// after its bytes are durable, so that a power cut leaves the old item or the new one. A link is
/// replaced itself, a folder not (is_a_directory). A process that is killed in the middle leaves a
/// partial item that `partials` knows of. With `rights` the file has the mode and, where the user
/// may give files away, the owner of that status.
Status createOrReplaceFile(const ItemReference& item, const PropertyList::Data& contents,
                           const PartialItems& partials,
                           const std::optional<struct stat>& rights = std::nullopt);

/// The bytes of a regular file. A link is not followed (too_many_symbolic_link_levels); a folder is
/// is_a_directory, any other kind invalid_argument, without blocking; more than `largestSize` bytes
/// are file_too_large.
Result<PropertyList::Data> readFile(const ItemReference& item, std::size_t largestSize);

}  // namespace tavrin
