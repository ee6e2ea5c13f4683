#include "platform/linux/TreeCopy.h"

#include <functional>

#include "platform/linux/PartialCopy.h"

namespace tavrin {

namespace {

Status carryOut(PartialCopy& copy, FileOperation& operation, const std::function<Status()>& work) {
  if (Status examined = copy.examine(); !examined) return examined;
  if (!copy.mayTakeLong()) return work();
  return operation.runLongPart([&] {
    Status done = work();
    copy.discard();
    return done;
  });
}

}  // namespace

Status copyItem(const ItemReference& source, const ItemReference& destination,
                PartialItems& partials, FileOperation& operation) {
  PartialCopy copy(source, destination, partials, CopyPurpose::Copy, operation);
  return carryOut(copy, operation, [&copy] {
    Status built = copy.build();
    return built ? copy.giveName() : built;
  });
}

Status copyFileReplacing(const ItemReference& source, const ItemReference& destination,
                         PartialItems& partials, FileOperation& operation) {
  PartialCopy copy(source, destination, partials, CopyPurpose::Copy, operation);
  return carryOut(copy, operation, [&copy] {
    if (Status built = copy.buildReplacement(); !built) return built;
    if (Status durable = copy.makeDurable(); !durable) return durable;
    return copy.replace();
  });
}

}  // namespace tavrin
