#include "platform/linux/TreeCopy.h"

#include <functional>

#include "platform/linux/PartialCopy.h"

namespace tavrin {

namespace {

Status runLongPart(PartialCopy& copy, FileOperation& operation,
                   const std::function<Status()>& work) {
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
  if (Status examined = copy.examine(); !examined) return examined;
  const auto work = [&copy] {
    Status built = copy.build();
    return built ? copy.giveName() : built;
  };
  return copy.mayTakeLong() ? runLongPart(copy, operation, work) : work();
}

Status copyFileReplacing(const ItemReference& source, const ItemReference& destination,
                         PartialItems& partials, FileOperation& operation) {
  PartialCopy copy(source, destination, partials, CopyPurpose::Copy, operation);
  if (Status examined = copy.examine(); !examined) return examined;
  // To be durable takes its time for small files too.
  return runLongPart(copy, operation, [&copy] {
    if (Status built = copy.buildReplacement(); !built) return built;
    if (Status durable = copy.makeDurable(); !durable) return durable;
    return copy.replace();
  });
}

}  // namespace tavrin
