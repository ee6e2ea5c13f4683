#include "platform/linux/TreeCopy.h"

#include "platform/linux/PartialCopy.h"

namespace tavrin {

Status copyItem(const ItemReference& source, const ItemReference& destination,
                PartialItems& partials) {
  PartialCopy copy(source, destination, partials, CopyPurpose::Copy);
  if (Status built = copy.build(); !built) return built;
  return copy.giveName();
}

Status copyFileReplacing(const ItemReference& source, const ItemReference& destination,
                         PartialItems& partials) {
  PartialCopy copy(source, destination, partials, CopyPurpose::Copy);
  if (Status built = copy.buildReplacement(); !built) return built;
  if (Status durable = copy.makeDurable(); !durable) return durable;
  return copy.replace();
}

}  // namespace tavrin
