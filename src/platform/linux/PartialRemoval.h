#pragma once

#include <string>

#include "foundation/Result.h"
#include "platform/linux/FileOperation.h"
#include "platform/linux/ItemReference.h"

namespace tavrin {

/// Removes what stands beside `destination` under the name of a partial item; nothing there is
/// success. Folders that are read-only because their source is are made writable first.
Status removePartialItem(const ItemReference& destination, const std::string& partialName,
                         FileOperation& operation);

}  // namespace tavrin
