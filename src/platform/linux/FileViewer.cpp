#include "platform/linux/FileViewer.h"

#include "foundation/FileURL.h"
#include "platform/linux/DefaultApplication.h"

namespace tavrin {

namespace {

/// The folder to show when the file manager does not answer.
struct PendingRequest {
  std::string folder;
  Log& log;
};

void showWithDefaultApplication(const PendingRequest& request, const std::string& whyNotByBus) {
  const Status opened = openWithDefaultApplication(request.folder, "inode/directory");
  if (opened) return;
  request.log.write("no file manager shows " + request.folder + ": " + whyNotByBus + "; " +
                    opened.error().describe());
}

void onAnswer(GObject* connection, GAsyncResult* result, gpointer pending) {
  const std::unique_ptr<PendingRequest> request(static_cast<PendingRequest*>(pending));
  GLibError error;
  const GLibPointer<GVariant> answer(
      g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, error.slot()));
  if (answer || error.matches(G_IO_ERROR, G_IO_ERROR_CANCELLED)) return;
  showWithDefaultApplication(*request, error.message());
}

}  // namespace

FileViewer::FileViewer(GDBusConnection* connection, Log& log)
    : connection_(connection), log_(log), pendingCalls_(g_cancellable_new()) {}

FileViewer::~FileViewer() {
  g_cancellable_cancel(pendingCalls_.get());
}

void FileViewer::showFolder(const std::string& path) {
  ask("ShowFolders", path, path);
}

void FileViewer::showItem(const std::string& path, const std::string& rootPath) {
  ask("ShowItems", path, rootPath);
}

void FileViewer::ask(const char* method, const std::string& path, const std::string& folder) {
  auto request = std::make_unique<PendingRequest>(PendingRequest{folder, log_});
  if (connection_ == nullptr) return showWithDefaultApplication(*request, "no session bus");
  const std::string uri = FileURL::fileURLWithPath(path).absoluteString();
  const char* const uris[] = {uri.c_str(), nullptr};
  g_dbus_connection_call(connection_, "org.freedesktop.FileManager1",
                         "/org/freedesktop/FileManager1", "org.freedesktop.FileManager1", method,
                         g_variant_new("(^ass)", uris, ""), nullptr, G_DBUS_CALL_FLAGS_NONE, -1,
                         pendingCalls_.get(), onAnswer, request.release());
}

}  // namespace tavrin
