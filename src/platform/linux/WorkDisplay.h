#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "platform/linux/OperationWatch.h"

namespace tavrin {

/// A command that takes long, as it is shown.
struct ShownWork {
  OperationKind kind = OperationKind::Copy;
  /// The item in hand.
  std::string path = {};
  /// What the whole command has done so far.
  std::uint64_t items = 0;
  std::uint64_t bytes = 0;
  /// How much of the item in hand is done, 0 to 1; nothing when that is not known.
  std::optional<double> share = {};
  /// The user has cancelled it; it ends soon.
  bool isCancelled = false;
};

enum class WorkEnd { Done, Cancelled };

/// A place of the desktop that shows what runs. It never waits for anybody.
class WorkDisplay {
 public:
  virtual ~WorkDisplay() = default;

  /// Shows `work`, of the same command as before until `end`. `cancel` may be called until then.
  virtual void show(const ShownWork& work, const std::function<void()>& cancel) = 0;

  /// The command that was shown is over.
  virtual void end(WorkEnd end) = 0;
};

}  // namespace tavrin
