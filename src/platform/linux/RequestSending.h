#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

#include "foundation/PropertyList.h"
#include "foundation/Result.h"

/// The way of a request to the host. Nothing here throws, for it runs in other programs' processes.
namespace tavrin {

/// How long the host may take to accept a request, its start included.
inline constexpr std::chrono::milliseconds patienceWithHost{60000};

/// Called once, with success or the reason why the host did not accept the request.
using RequestCompletion = std::function<void(const Status&)>;

struct SendingOptions {
  std::chrono::milliseconds patience = patienceWithHost;
  /// The desktop's token for windows that the request leads to; "" for none.
  std::string startupToken = {};
};

/// Writes a request file (see writeRequestFile), asks the session bus to open it with the host,
/// which is started if need be, and waits for its answer, at most the patience once the bus is
/// reached. The host has read the file when it answers, so the file is gone when this returns;
/// carrying the request out comes later. The bus connection is one of its own, whose end means
/// nothing to the process.
Status sendRequest(const PropertyList& request, const SendingOptions& options = {}) noexcept;

/// Sends requests, one after the other until one fails, without waiting: all of it happens on
/// another thread. `completion` is called in the thread-default main context (GLib's) of the
/// calling thread, not before this returns. An exception of `completion` is dropped.
void sendRequestsAsync(std::vector<PropertyList> requests, RequestCompletion completion,
                       SendingOptions options = {}) noexcept;

}  // namespace tavrin
