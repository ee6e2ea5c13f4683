#include "platform/linux/FileViewerRestart.h"

#include "platform/linux/BusDaemon.h"
#include "platform/linux/ProgramLauncher.h"

namespace tavrin {

namespace {

/// A file manager that the bus is asked to start.
struct PendingStart {
  const FileViewerKind& kind;
  Log& log;
  QuitLock untilAnswered = {};
};

void launchInBackground(const FileViewerKind& kind, Log& log) {
  const Status launched = launchFileViewer(kind, kind.backgroundOption);
  if (!launched) log.write("restart file manager: " + launched.error().describe());
}

}  // namespace

FileViewerRestart::FileViewerRestart(GDBusConnection* connection, Log& log,
                                     RunningFileViewer::Pace pace)
    : connection_(connection), log_(log), pace_(pace), pendingCalls_(g_cancellable_new()) {}

FileViewerRestart::~FileViewerRestart() {
  g_cancellable_cancel(pendingCalls_.get());
}

void FileViewerRestart::start() {
  if (connection_ == nullptr) return log_.write("restart file manager: no session bus");
  std::erase_if(viewers_, [](const auto& entry) { return entry.second->isFinished(); });
  startedKinds_.clear();
  untilListed_.emplace();
  callBus(connection_, "ListNames", nullptr, pendingCalls_.get(), onNames, this);
}

void FileViewerRestart::onNames(GObject* connection, GAsyncResult* result, gpointer self) {
  GLibError error;
  const GLibPointer<GVariant> answer(
      g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, error.slot()));
  // A cancelled call belongs to an object that is gone.
  if (error.matches(G_IO_ERROR, G_IO_ERROR_CANCELLED)) return;
  auto& restart = *static_cast<FileViewerRestart*>(self);
  const QuitLock untilHandled;
  restart.untilListed_.reset();
  if (!answer) return restart.log_.write("restart file manager: " + error.message());
  const GLibPointer<GVariant> names(g_variant_get_child_value(answer.get(), 0));
  for (gsize index = 0; index < g_variant_n_children(names.get()); ++index) {
    const GLibPointer<GVariant> name(g_variant_get_child_value(names.get(), index));
    restart.restartIfFileViewer(g_variant_get_string(name.get(), nullptr));
  }
}

void FileViewerRestart::restartIfFileViewer(const std::string& busName) {
  const FileViewerKind* kind = fileViewerOfBusName(busName);
  if (kind == nullptr || viewers_.contains(busName)) return;
  viewers_[busName] = std::make_unique<RunningFileViewer>(connection_, busName, *kind, pace_, log_,
                                                          [this, kind] { startAgain(*kind); });
}

void FileViewerRestart::startAgain(const FileViewerKind& kind) {
  if (!startedKinds_.insert(&kind).second) return;
  if (kind.hasNamePerProcess) return launchInBackground(kind, log_);
  const std::string name(kind.busName);
  callBus(connection_, "StartServiceByName", g_variant_new("(su)", name.c_str(), 0U),
          pendingCalls_.get(), onStarted, new PendingStart{kind, log_});
}

void FileViewerRestart::onStarted(GObject* connection, GAsyncResult* result, gpointer start) {
  const std::unique_ptr<PendingStart> pending(static_cast<PendingStart*>(start));
  GLibError error;
  const GLibPointer<GVariant> answer(
      g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, error.slot()));
  if (answer || error.matches(G_IO_ERROR, G_IO_ERROR_CANCELLED)) return;
  // Most file managers are no services of the bus on some system or other.
  launchInBackground(pending->kind, pending->log);
}

}  // namespace tavrin
