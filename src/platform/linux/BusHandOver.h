#pragma once

#include <gio/gio.h>

#include "platform/Log.h"
#include "platform/linux/ApplicationObject.h"
#include "platform/linux/BusIntake.h"

namespace tavrin {

enum class HandOver {
  Accepted,
  /// The program that had the name went away without an answer: the name may be free now.
  OwnerGone,
  Failed,
};

/// Asks the running program to do what `launch` wants, and waits `timeoutMilliseconds` at most for
/// its answer. A failure reaches the log.
HandOver handOver(GDBusConnection* connection, const BusIntake::Launch& launch,
                  int timeoutMilliseconds, Log& log);

}  // namespace tavrin
