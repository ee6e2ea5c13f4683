#include "platform/linux/JobView.h"

#include <gio/gio.h>

#include <string>
#include <utility>

#include "platform/linux/GLibPointers.h"
#include "platform/linux/Identity.h"
#include "platform/linux/WorkText.h"

namespace tavrin {

namespace {

// Of a job that its user may end (KJob::Killable), and of one that its user has ended
// (KJob::KilledJobError).
constexpr int canBeCancelled = 1;
constexpr guint killedByUser = 1;

constexpr const char* serverPath = "/JobViewServer";

/// A generation of the interfaces.
struct Protocol {
  const char* service;
  const char* serverInterface;
  const char* viewInterface;
  /// The arguments of "requestView".
  GVariant* (*request)();
};

GVariant* requestWithHints() {
  return g_variant_new("(sia{sv})", identity::applicationId, canBeCancelled, nullptr);
}

GVariant* requestWithIcon() {
  return g_variant_new("(ssi)", identity::displayName, identity::applicationId, canBeCancelled);
}

constexpr Protocol newProtocol{"org.kde.JobViewServer", "org.kde.JobViewServerV2",
                               "org.kde.JobViewV3", requestWithHints};
constexpr Protocol oldProtocol{"org.kde.kuiserver", "org.kde.JobViewServer", "org.kde.JobViewV2",
                               requestWithIcon};

GVariant* textVariant(const QString& text) {
  return g_variant_new_string(text.toUtf8().constData());
}

}  // namespace

/// One job in the list, from the request for it on.
class JobView::View : public std::enable_shared_from_this<View> {
 public:
  View(GDBusConnection* connection, std::function<void()> cancel)
      : connection_(G_DBUS_CONNECTION(g_object_ref(connection))), cancel_(std::move(cancel)) {}
  View(const View&) = delete;
  View& operator=(const View&) = delete;
  ~View() {
    if (subscription_ != 0) g_dbus_connection_signal_unsubscribe(connection_.get(), subscription_);
  }

  void request(const Protocol& protocol);
  void show(const ShownWork& work);
  void end(WorkEnd end);

 private:
  bool isNew() const { return protocol_ == &newProtocol; }
  void opened(const char* path);
  void refused();
  void showNow() const;
  void endNow() const;
  void call(const char* method, GVariant* arguments) const;

  static void onAnswer(GObject* connection, GAsyncResult* result, gpointer view);
  static void onCancelRequested(GDBusConnection*, const char*, const char*, const char*,
                                const char*, GVariant*, gpointer view);

  GObjectPointer<GDBusConnection> connection_;
  std::function<void()> cancel_;
  const Protocol* protocol_ = nullptr;
  /// "" while there is no view.
  std::string path_;
  unsigned subscription_ = 0;
  ShownWork work_;
  std::optional<WorkEnd> end_;
};

void JobView::View::request(const Protocol& protocol) {
  protocol_ = &protocol;
  g_dbus_connection_call(connection_.get(), protocol.service, serverPath, protocol.serverInterface,
                         "requestView", protocol.request(), G_VARIANT_TYPE("(o)"),
                         G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, onAnswer,
                         new std::shared_ptr<View>(shared_from_this()));
}

void JobView::View::onAnswer(GObject* connection, GAsyncResult* result, gpointer view) {
  const std::unique_ptr<std::shared_ptr<View>> owner(static_cast<std::shared_ptr<View>*>(view));
  GLibError error;
  const GLibPointer<GVariant> answer(
      g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, error.slot()));
  if (!answer) return (*owner)->refused();
  const char* path = nullptr;
  g_variant_get(answer.get(), "(&o)", &path);
  (*owner)->opened(path);
}

/// A desktop without a list of jobs is no failure.
void JobView::View::refused() {
  if (isNew() && !end_) request(oldProtocol);
}

void JobView::View::opened(const char* path) {
  path_ = path;
  if (end_) return endNow();
  subscription_ = g_dbus_connection_signal_subscribe(
      connection_.get(), protocol_->service, protocol_->viewInterface, "cancelRequested", path,
      nullptr, G_DBUS_SIGNAL_FLAGS_NONE, onCancelRequested,
      new std::weak_ptr<View>(weak_from_this()),
      [](gpointer weak) { delete static_cast<std::weak_ptr<View>*>(weak); });
  showNow();
}

void JobView::View::onCancelRequested(GDBusConnection*, const char*, const char*, const char*,
                                      const char*, GVariant*, gpointer view) {
  const auto alive = static_cast<std::weak_ptr<View>*>(view)->lock();
  if (alive && !alive->end_) alive->cancel_();
}

void JobView::View::show(const ShownWork& work) {
  work_ = work;
  if (!path_.empty()) showNow();
}

void JobView::View::showNow() const {
  const auto percentage = workPercentage(work_);
  if (!isNew()) {
    call("setInfoMessage", g_variant_new("(s)", workSummary(work_).toUtf8().constData()));
    if (percentage) call("setPercent", g_variant_new("(u)", *percentage));
    return;
  }
  GVariantBuilder properties;
  g_variant_builder_init(&properties, G_VARIANT_TYPE_VARDICT);
  g_variant_builder_add(&properties, "{sv}", "title", textVariant(workTitle(work_)));
  g_variant_builder_add(&properties, "{sv}", "infoMessage", textVariant(workProgress(work_)));
  if (percentage) {
    g_variant_builder_add(&properties, "{sv}", "percent", g_variant_new_uint32(*percentage));
  }
  call("update", g_variant_new("(a{sv})", &properties));
}

void JobView::View::end(WorkEnd end) {
  end_ = end;
  if (!path_.empty()) endNow();
}

void JobView::View::endNow() const {
  if (isNew()) {
    const guint error = end_ == WorkEnd::Cancelled ? killedByUser : 0;
    call("terminate", g_variant_new("(usa{sv})", error, "", nullptr));
  } else {
    call("terminate", g_variant_new("(s)", ""));
  }
}

/// Nobody waits for the answer: a desktop that has just lost its list shows nothing.
void JobView::View::call(const char* method, GVariant* arguments) const {
  g_dbus_connection_call(connection_.get(), protocol_->service, path_.c_str(),
                         protocol_->viewInterface, method, arguments, nullptr,
                         G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, nullptr, nullptr);
}

void JobView::show(const ShownWork& work, const std::function<void()>& cancel) {
  if (connection_ == nullptr) return;
  if (!view_) {
    view_ = std::make_shared<View>(connection_, cancel);
    view_->request(newProtocol);
  }
  view_->show(work);
}

void JobView::end(WorkEnd end) {
  if (const auto view = std::exchange(view_, nullptr)) view->end(end);
}

}  // namespace tavrin
