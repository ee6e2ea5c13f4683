#include "terminal/TerminalServiceRegistry.h"

#include "foundation/PathHelpers.h"
#include "terminal/TerminalServiceIdentifiers.h"

namespace tavrin {

namespace {

constexpr const char* secondTerminalIdentifier = "com.googlecode.iterm2";

}  // namespace

TerminalServiceRegistry::TerminalServiceRegistry(Platform& platform)
    : platform_{platform.fileManager, platform.launchServices, platform.pasteboards,
                platform.services, platform.log} {}

std::vector<TerminalService> TerminalServiceRegistry::services() const {
  std::vector<TerminalService> services = {
      {"Terminal", "Open Terminal Tab", "New Terminal Tab at Folder",
       terminal_service::terminalTab},
      {"Terminal", "Open Terminal Window", "New Terminal at Folder",
       terminal_service::terminalWindow}};
  const bool hasSecond =
      isApplicationInstalled(secondTerminalIdentifier, [this](const std::string& identifier) {
        return platform_.launchServices.applicationsForBundleIdentifier(identifier).size();
      });
  if (!hasSecond) return services;
  services.emplace_back("iTerm2", "Open iTerm Tab", "New iTerm2 Tab Here",
                        terminal_service::iTerm2Tab);
  services.emplace_back("iTerm2", "Open iTerm Window", "New iTerm2 Window Here",
                        terminal_service::iTerm2Window);
  return services;
}

std::optional<TerminalService> TerminalServiceRegistry::activeService(
    const std::string& identifier) const {
  for (const TerminalService& service : services()) {
    if (service.identifier() == identifier) return service;
  }
  return std::nullopt;
}

void TerminalServiceRegistry::executeServiceNamed(const std::optional<std::string>& serviceName,
                                                  const std::string& atPath) const {
  if (!platform_.fileManager.isDirectoryAtPath(atPath)) return;
  const auto pasteboard = platform_.pasteboards.pasteboardWithUniqueName();
  pasteboard->declareTypes({PasteboardType::String});
  const Status written = pasteboard->setString(atPath, PasteboardType::String);
  if (written && platform_.services.performService(serviceName, *pasteboard)) return;
  platform_.log.write("Failed to perform service: " + descriptionOf(serviceName));
}

void TerminalServiceRegistry::executeServiceAtPath(const std::string& path,
                                                   const std::string& serviceIdentifier) const {
  const auto service = activeService(serviceIdentifier);
  executeServiceNamed(service ? std::optional(service->serviceName()) : std::nullopt, path);
}

TerminalServiceRegistry& TerminalServiceRegistry::sharedInstance(Platform& platform) {
  static TerminalServiceRegistry instance(platform);
  return instance;
}

}  // namespace tavrin
