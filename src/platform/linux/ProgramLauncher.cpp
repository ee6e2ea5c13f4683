#include "platform/linux/ProgramLauncher.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>

#include "platform/linux/GLibPointers.h"

namespace tavrin {

namespace {

void becomeSessionLeader(gpointer) {
  ::setsid();
}

GLibPointer<char*> environmentFor(const std::string& workingFolder, StartupToken startupToken) {
  char** environment = g_get_environ();
  for (const char* name : variablesOfOwnStart) {
    const bool isToken = std::ranges::count(variablesOfStartupToken, name) != 0;
    if (isToken && startupToken == StartupToken::HandOn) continue;
    environment = g_environ_unsetenv(environment, name);
  }
  return GLibPointer<char*>(g_environ_setenv(environment, "PWD", workingFolder.c_str(), TRUE));
}

std::error_code causeOf(const GLibError& error) {
  const auto reason = error.matches(G_SPAWN_ERROR, G_SPAWN_ERROR_NOENT)    ? ENOENT
                      : error.matches(G_SPAWN_ERROR, G_SPAWN_ERROR_ACCES)  ? EACCES
                      : error.matches(G_SPAWN_ERROR, G_SPAWN_ERROR_NOEXEC) ? ENOEXEC
                                                                           : EIO;
  return {reason, std::generic_category()};
}

}  // namespace

Status launchProgram(const std::string& path, const std::vector<std::string>& arguments,
                     const std::string& workingFolder, StartupToken startupToken) {
  std::vector<char*> argv = {const_cast<char*>(path.c_str())};
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  GLibError error;
  // Without G_SPAWN_DO_NOT_REAP_CHILD GLib starts a grandchild and reaps the child between.
  if (g_spawn_async(workingFolder.c_str(), argv.data(),
                    environmentFor(workingFolder, startupToken).get(), G_SPAWN_STDOUT_TO_DEV_NULL,
                    becomeSessionLeader, nullptr, nullptr, error.slot()) == FALSE) {
    return SystemError{"launch", path, causeOf(error)};
  }
  return success();
}

}  // namespace tavrin
