#pragma once

#include <optional>
#include <string>
#include <vector>

#include "platform/Platform.h"
#include "terminal/TerminalPlatform.h"
#include "terminal/TerminalService.h"

namespace tavrin {

/// The services of the terminals that are supported, to open a folder in a new tab or window. It
/// holds nothing but the platform: a terminal that is installed or removed counts at the next call.
/// May be used where the platform's services may.
class TerminalServiceRegistry {
 public:
  /// The services of `platform` outlive the registry.
  explicit TerminalServiceRegistry(const TerminalPlatform& platform) : platform_(platform) {}
  explicit TerminalServiceRegistry(Platform& platform);

  /// The system's terminal, and iTerm2 where it is installed; the tab before the window.
  std::vector<TerminalService> services() const;

  /// The first service whose identifier is `identifier`, letter for letter.
  std::optional<TerminalService> activeService(const std::string& identifier) const;

  /// Performs a service for the folder `atPath`, absolute, which is handed over as it is written.
  /// Nothing happens when no folder stands there. When the service cannot be performed, or has no
  /// name, the log says so in one line.
  void executeServiceNamed(const std::optional<std::string>& serviceName,
                           const std::string& atPath) const;

  /// executeServiceNamed with the name of the service of that identifier, which it may not have.
  void executeServiceAtPath(const std::string& path, const std::string& serviceIdentifier) const;

  /// The one registry of the process, made by the first call, whichever thread that comes from, and
  /// with the platform of that call, which lives as long as the process uses it.
  static TerminalServiceRegistry& sharedInstance(Platform& platform);

 private:
  const TerminalPlatform platform_;
};

}  // namespace tavrin
