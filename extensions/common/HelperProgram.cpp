#include "extensions/common/HelperProgram.h"

#include <memory>
#include <utility>

#include "platform/linux/GLibPointers.h"

namespace tavrin {

namespace {

using Finished = std::function<void(bool succeeded)>;

void tell(const Finished& finished, bool succeeded) noexcept {
  try {
    if (finished) finished(succeeded);
  } catch (...) {
    g_warning("what follows the end of a program failed");
  }
}

void hasEnded(GObject* process, GAsyncResult* result, gpointer data) {
  const std::unique_ptr<Finished> finished(static_cast<Finished*>(data));
  GLibError error;
  const bool succeeded =
      g_subprocess_wait_check_finish(G_SUBPROCESS(process), result, error.slot()) != FALSE;
  if (!succeeded) g_warning("a program of Tavrin failed: %s", error.message().c_str());
  tell(*finished, succeeded);
}

}  // namespace

void runHelperProgram(const std::vector<std::string>& words,
                      const std::map<std::string, std::string>& environment, Finished finished) {
  const GObjectPointer<GSubprocessLauncher> launcher(
      g_subprocess_launcher_new(G_SUBPROCESS_FLAGS_STDOUT_SILENCE));
  for (const auto& [name, value] : environment) {
    g_subprocess_launcher_setenv(launcher.get(), name.c_str(), value.c_str(), TRUE);
  }
  std::vector<const char*> arguments;
  arguments.reserve(words.size() + 1);
  for (const std::string& word : words) arguments.push_back(word.c_str());
  arguments.push_back(nullptr);
  GLibError error;
  const GObjectPointer<GSubprocess> process(
      g_subprocess_launcher_spawnv(launcher.get(), arguments.data(), error.slot()));
  if (!process) {
    g_warning("%s", error.message().c_str());
    return tell(finished, false);
  }
  g_subprocess_wait_check_async(process.get(), nullptr, hasEnded,
                                std::make_unique<Finished>(std::move(finished)).release());
}

}  // namespace tavrin
