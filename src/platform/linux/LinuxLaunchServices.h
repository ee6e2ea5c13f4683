#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/PropertyList.h"
#include "platform/Bundle.h"
#include "platform/LaunchServices.h"
#include "platform/Log.h"
#include "platform/PropertyListSerialization.h"

namespace tavrin {

/// Installed applications by their desktop entries. The resource "Applications.plist" says which
/// desktop ids an application of a bundle identifier goes by; it is read at the first question.
class LinuxLaunchServices final : public LaunchServices {
 public:
  /// All three outlive the services.
  LinuxLaunchServices(const Bundle& bundle, PropertyListSerialization& propertyLists, Log& log);

  /// The desktop ids ("code.desktop") in the order of the table. An entry that is hidden, or whose
  /// program or TryExec is not there, is not installed; one that menus do not show is.
  std::vector<std::string> applicationsForBundleIdentifier(
      const std::string& bundleIdentifier) override;

 private:
  const PropertyList& table();

  const Bundle& bundle_;
  PropertyListSerialization& propertyLists_;
  Log& log_;
  std::optional<PropertyList> table_;
};

}  // namespace tavrin
