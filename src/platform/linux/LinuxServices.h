#pragma once

#include "platform/Services.h"
#include "platform/linux/ProgramLauncher.h"
#include "platform/linux/ResourceTable.h"

namespace tavrin {

/// Services of terminals, which the resource "Terminals.plist" names: they open the folder whose
/// path stands on the pasteboard, as plain text, in a new tab or window.
class LinuxServices final : public Services {
 public:
  /// The first three outlive the services.
  LinuxServices(const Bundle& bundle, PropertyListSerialization& propertyLists, Log& log,
                StartupToken startupToken = StartupToken::Withhold)
      : terminals_(bundle, propertyLists, log, "Terminals"), startupToken_(startupToken) {}

  /// True when a terminal was started; it is no child of this process.
  bool performService(const std::optional<std::string>& name, Pasteboard& pasteboard) override;

 private:
  ResourceTable terminals_;
  const StartupToken startupToken_;
};

}  // namespace tavrin
