#pragma once

#include <gio/gio.h>

#include <memory>

#include "foundation/Result.h"
#include "platform/linux/GLibPointers.h"

namespace tavrin {

/// A connection to the session bus for this caller alone, which closes with the last owner. The
/// process's shared one would end a process that did not make it itself when the bus goes. Waits
/// for the bus, ten seconds at most (timed_out); any thread may call it. Its end is told in
/// `notices`, which nobody iterates meanwhile; when that is null, to nobody.
Result<std::shared_ptr<GDBusConnection>> connectToSessionBus(GMainContext* notices = nullptr);

/// The reason of a call on the bus that failed: timed_out, no_such_device_or_address for a service
/// that is not there, connection_refused for any other.
SystemError busError(const char* operation, const GLibError& error);

}  // namespace tavrin
