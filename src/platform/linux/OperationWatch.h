#pragma once

#include <memory>
#include <string>

#include "platform/linux/FileOperation.h"

namespace tavrin {

enum class OperationKind { Copy, Move, Remove };

/// Sees the copies, moves and removals of a command, to show those that take long and to let the
/// user cancel them. Used on the main thread.
class OperationWatch {
 public:
  virtual ~OperationWatch() = default;

  /// Operations that begin while the result and its copies live belong to one command, which may
  /// hold several such series.
  [[nodiscard]] virtual std::shared_ptr<void> series() = 0;

  /// The next operation, on the item at `path`, which outlives the result. It is cancelled from
  /// the start when the user has cancelled the command. Outside of a series it is a command of its
  /// own. This may take a turn of the event loop, so that a command of many small operations does
  /// not keep the program from ending.
  [[nodiscard]] virtual std::unique_ptr<FileOperation> operation(OperationKind kind,
                                                                 const std::string& path) = 0;
};

}  // namespace tavrin
