#pragma once

#include <set>
#include <string>

#include "platform/Log.h"
#include "platform/Shell.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/StartedScopes.h"

namespace tavrin {

/// Scripts run by the helper `tavrin-shell`, a process of its own that gives up its rights and then
/// calls system(). Only the helper is confined, so no thread of the host is in the way. It gets the
/// writable folder as the handle of the started scope, an environment without the addresses of the
/// session's services, "/" as its folder and nothing to read. Used on one thread.
class LinuxShell final : public Shell {
 public:
  /// `moduleFolder` holds the helper and the folder "tools"; the others outlive this object.
  LinuxShell(const StartedScopes& scopes, Log& log, std::string moduleFolder);

  Result<int> system(const std::string& script, const std::string& writableFolder) override;
  std::string outputOfCommand(const std::string& command) override;

 private:
  /// Pipes from the helper.
  struct WriteEnds {
    FileDescriptor reports;
    FileDescriptor output;
  };
  /// Starts the helper; its process number.
  Result<int> start(const std::string& script, const std::string& writableFolder,
                    const WriteEnds& ends);
  Result<int> finish(int child, const std::string& report);
  std::string helperPath() const;
  void logOutput(const std::string& output);
  void reportOnce(const std::string& missing);

  const StartedScopes& scopes_;
  Log& log_;
  std::string moduleFolder_;
  std::set<std::string> reported_;
};

}  // namespace tavrin
