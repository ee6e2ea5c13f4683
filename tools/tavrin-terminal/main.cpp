#include <cstdio>
#include <string>
#include <vector>

#include "MemoryPasteboard.h"
#include "foundation/PathString.h"
#include "platform/linux/Identity.h"
#include "platform/linux/LinuxBundle.h"
#include "platform/linux/LinuxDirectories.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxLaunchServices.h"
#include "platform/linux/LinuxLog.h"
#include "platform/linux/LinuxPropertyListSerialization.h"
#include "platform/linux/LinuxSecurityScope.h"
#include "platform/linux/LinuxServices.h"
#include "terminal/TerminalServiceRegistry.h"

namespace tavrin::terminaltool {

namespace {

constexpr int failed = 1;
constexpr int usageError = 2;

constexpr const char* usage =
    R"(Opens a folder in a terminal, as the menu of Tavrin does.

  tavrin-terminal IDENTIFIER FOLDER

IDENTIFIER is that of a terminal's service, such as com.apple.terminal.tab or
com.apple.terminal.window, FOLDER an absolute path. The terminal outlives this
program and gets the startup token of its environment (XDG_ACTIVATION_TOKEN,
DESKTOP_STARTUP_ID).

Exit status: 0 a terminal was started, 1 none was and standard error says why,
2 wrong usage.
)";

/// The services of terminals, and whether one was performed, which the registry does not tell.
class NotedServices final : public Services {
 public:
  explicit NotedServices(Services& services) : services_(services) {}

  bool performService(const std::optional<std::string>& name, Pasteboard& pasteboard) override {
    isPerformed_ = services_.performService(name, pasteboard);
    return isPerformed_;
  }

  bool isPerformed() const { return isPerformed_; }

 private:
  Services& services_;
  bool isPerformed_ = false;
};

int complain(const std::string& mistake) {
  std::fprintf(stderr, "tavrin-terminal: %s\n", mistake.c_str());
  return usageError;
}

int say(const std::string& text) {
  return std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0 ? 0 : failed;
}

int open(const std::string& identifier, const std::string& folder) {
  LinuxLog log;
  const LinuxSecurityScope noScope({}, log);
  LinuxFileManager fileManager(noScope, log);
  if (!fileManager.isDirectoryAtPath(folder)) {
    log.write("open terminal: no folder: " + folder);
    return failed;
  }
  const LinuxBundle bundle(
      standardizingPath(appendingPathComponent(programDirectory(), TAVRIN_PROGRAMS_FROM_MODULES)));
  LinuxPropertyListSerialization propertyLists;
  ApplicationTable applications(bundle, propertyLists, log);
  LinuxLaunchServices launchServices(applications);
  MemoryPasteboards pasteboards;
  LinuxServices terminals(bundle, propertyLists, log, StartupToken::HandOn);
  NotedServices services(terminals);
  const TerminalServiceRegistry registry(
      TerminalPlatform{fileManager, launchServices, pasteboards, services, log});
  registry.executeServiceAtPath(folder, identifier);
  return services.isPerformed() ? 0 : failed;
}

int perform(const std::vector<std::string>& words) {
  if (words == std::vector<std::string>{"--help"}) return say(usage);
  if (words == std::vector<std::string>{"--version"}) {
    return say(std::string("tavrin-terminal ") + identity::version + "\n");
  }
  if (words.size() != 2) return complain("expected IDENTIFIER FOLDER; see --help");
  if (!words[1].starts_with('/')) return complain("no absolute path: " + words[1]);
  return open(words[0], words[1]);
}

}  // namespace

}  // namespace tavrin::terminaltool

int main(int argumentCount, char** arguments) {
  return tavrin::terminaltool::perform({arguments + 1, arguments + argumentCount});
}
