#pragma once

#include <string>
#include <vector>

#include "platform/LaunchServices.h"
#include "platform/linux/ApplicationTable.h"

namespace tavrin {

/// Installed applications by their desktop entries.
class LinuxLaunchServices final : public LaunchServices {
 public:
  /// `applications` says which desktop ids an application of a bundle identifier goes by; it
  /// outlives the services.
  explicit LinuxLaunchServices(ApplicationTable& applications) : applications_(applications) {}

  /// The desktop ids ("code.desktop") in the order of the table. An entry that is hidden, or whose
  /// program or TryExec is not there, is not installed; one that menus do not show is.
  std::vector<std::string> applicationsForBundleIdentifier(
      const std::string& bundleIdentifier) override;

 private:
  ApplicationTable& applications_;
};

}  // namespace tavrin
