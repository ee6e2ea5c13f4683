#include "platform/linux/RunningFileViewer.h"

#include <utility>

#include "platform/linux/BusDaemon.h"
#include "platform/linux/ProgramLauncher.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

namespace {

/// Where Dolphin has its windows on the bus, one object each ("/dolphin/Dolphin_1").
constexpr const char* windowsPath = "/dolphin";

void callWithoutAnswer(GDBusConnection* connection, const std::string& busName,
                       const std::string& path, const char* interface, const char* method) {
  g_dbus_connection_call(connection, busName.c_str(), path.c_str(), interface, method, nullptr,
                         nullptr, G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, nullptr, nullptr);
}

/// A process without windows has no object there.
bool isMissingObject(const GLibError& error) {
  return error.matches(G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_OBJECT) ||
         error.matches(G_DBUS_ERROR, G_DBUS_ERROR_UNKNOWN_METHOD);
}

}  // namespace

Status launchFileViewer(const FileViewerKind& kind, const char* option) {
  const GLibPointer<char> program(g_find_program_in_path(kind.program));
  if (program) return launchProgram(program.get(), {option});
  return systemError("find program", kind.program, std::errc::no_such_file_or_directory);
}

RunningFileViewer::RunningFileViewer(GDBusConnection* connection, std::string busName,
                                     const FileViewerKind& kind, Pace pace, Log& log,
                                     std::function<void()> ended)
    : connection_(connection),
      busName_(std::move(busName)),
      kind_(kind),
      pace_(pace),
      log_(log),
      ended_(std::move(ended)),
      pendingCalls_(g_cancellable_new()),
      watch_(g_bus_watch_name_on_connection(connection, busName_.c_str(),
                                            G_BUS_NAME_WATCHER_FLAGS_NONE, onAppeared, onVanished,
                                            this, nullptr)) {}

RunningFileViewer::~RunningFileViewer() {
  finish();
}

void RunningFileViewer::onAppeared(GDBusConnection* connection, const char* /*name*/,
                                   const char* owner, gpointer self) {
  auto& viewer = *static_cast<RunningFileViewer*>(self);
  callBus(connection, "GetConnectionUnixProcessID", g_variant_new("(s)", owner),
          viewer.pendingCalls_.get(), onProcess, self);
}

void RunningFileViewer::onVanished(GDBusConnection* connection, const char* /*name*/,
                                   gpointer self) {
  auto& viewer = *static_cast<RunningFileViewer*>(self);
  // Without a connection it is the bus that went.
  const bool hasEnded = connection != nullptr && viewer.isAsked_;
  const QuitLock untilStartedAgain;
  viewer.finish();
  if (hasEnded) viewer.ended_();
}

void RunningFileViewer::onProcess(GObject* connection, GAsyncResult* result, gpointer self) {
  GLibError error;
  const GLibPointer<GVariant> answer(
      g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, error.slot()));
  if (error.matches(G_IO_ERROR, G_IO_ERROR_CANCELLED)) return;
  auto& viewer = *static_cast<RunningFileViewer*>(self);
  if (!answer) return viewer.leaveAlone(error.message());
  guint32 processId = 0;
  g_variant_get(answer.get(), "(u)", &processId);
  viewer.rest_.emplace(static_cast<int>(processId));
  viewer.timer_ =
      g_timeout_add(static_cast<guint>(viewer.pace_.betweenLooks.count()), onLook, self);
}

gboolean RunningFileViewer::onLook(gpointer self) {
  static_cast<RunningFileViewer*>(self)->look();
  return G_SOURCE_CONTINUE;
}

void RunningFileViewer::look() {
  if (++looks_ > pace_.looksAtMost) {
    return leaveAlone(isAsked_ ? "it was asked to end and has not" : "it is still at work");
  }
  if (!isAsked_ && rest_->look() >= pace_.looksAtRest) askToQuit();
}

void RunningFileViewer::askToQuit() {
  isAsked_ = true;
  if (kind_.quitOption == nullptr) {
    g_dbus_connection_call(connection_, busName_.c_str(), windowsPath,
                           "org.freedesktop.DBus.Introspectable", "Introspect", nullptr,
                           G_VARIANT_TYPE("(s)"), G_DBUS_CALL_FLAGS_NO_AUTO_START, -1,
                           pendingCalls_.get(), onWindows, this);
    return;
  }
  const Status launched = launchFileViewer(kind_, kind_.quitOption);
  if (!launched) leaveAlone(launched.error().describe());
}

void RunningFileViewer::onWindows(GObject* connection, GAsyncResult* result, gpointer self) {
  GLibError error;
  const GLibPointer<GVariant> answer(
      g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, error.slot()));
  if (error.matches(G_IO_ERROR, G_IO_ERROR_CANCELLED)) return;
  auto& viewer = *static_cast<RunningFileViewer*>(self);
  if (!answer && !isMissingObject(error)) return viewer.leaveAlone(error.message());
  if (!answer) return viewer.askApplicationToQuit();
  const char* description = "";
  g_variant_get(answer.get(), "(&s)", &description);
  viewer.askWindowsToClose(description);
}

/// A window asks about what is at work in it before it closes, the application would not.
void RunningFileViewer::askWindowsToClose(const char* description) {
  GLibError error;
  const GLibPointer<GDBusNodeInfo> folder(g_dbus_node_info_new_for_xml(description, error.slot()));
  if (!folder) return leaveAlone(error.message());
  if (folder->nodes == nullptr || folder->nodes[0] == nullptr) return askApplicationToQuit();
  for (GDBusNodeInfo** window = folder->nodes; *window != nullptr; ++window) {
    const std::string path = std::string(windowsPath) + "/" + (*window)->path;
    if (g_variant_is_object_path(path.c_str()) == FALSE) continue;
    callWithoutAnswer(connection_, busName_, path, "org.qtproject.Qt.QWidget", "close");
  }
}

void RunningFileViewer::askApplicationToQuit() {
  callWithoutAnswer(connection_, busName_, "/MainApplication", "org.qtproject.Qt.QCoreApplication",
                    "quit");
}

void RunningFileViewer::leaveAlone(const std::string& reason) {
  log_.write("restart file manager " + busName_ + ": " + reason);
  finish();
}

void RunningFileViewer::finish() {
  g_cancellable_cancel(pendingCalls_.get());
  if (timer_ != 0) g_source_remove(std::exchange(timer_, 0));
  if (watch_ != 0) g_bus_unwatch_name(std::exchange(watch_, 0));
  untilFinished_.reset();
}

}  // namespace tavrin
