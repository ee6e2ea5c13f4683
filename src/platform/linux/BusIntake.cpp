#include "platform/linux/BusIntake.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <thread>

#include "foundation/FileURL.h"
#include "platform/linux/BusHandOver.h"
#include "platform/linux/GLibPointers.h"
#include "platform/linux/Identity.h"
#include "platform/linux/SessionBus.h"

namespace tavrin {

namespace {

constexpr int busTimeoutMilliseconds = 5000;
constexpr unsigned doNotQueue = 4;
constexpr unsigned primaryOwner = 1;
constexpr unsigned alreadyOwner = 4;

constexpr const char* introspection =
    "<node><interface name='org.freedesktop.Application'>"
    "<method name='Activate'><arg type='a{sv}' direction='in'/></method>"
    "<method name='Open'><arg type='as' direction='in'/><arg type='a{sv}' direction='in'/></method>"
    "<method name='ActivateAction'><arg type='s' direction='in'/><arg type='av' direction='in'/>"
    "<arg type='a{sv}' direction='in'/></method>"
    "</interface></node>";

/// Makes a context the one that GLib's asynchronous answers of this thread come to.
class ThreadDefaultContext {
 public:
  explicit ThreadDefaultContext(GMainContext* context) : context_(context) {
    g_main_context_push_thread_default(context_);
  }
  ~ThreadDefaultContext() { g_main_context_pop_thread_default(context_); }
  ThreadDefaultContext(const ThreadDefaultContext&) = delete;
  ThreadDefaultContext& operator=(const ThreadDefaultContext&) = delete;

 private:
  GMainContext* context_;
};

GLibPointer<GVariant> callBus(GDBusConnection* connection, const char* method, GVariant* arguments,
                              GLibError& error) {
  return GLibPointer<GVariant>(g_dbus_connection_call_sync(
      connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
      arguments, G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, busTimeoutMilliseconds, nullptr,
      error.slot()));
}

/// The token in the platform data of an "Open".
std::string startupTokenOf(GVariant* arguments) {
  const GLibPointer<GVariant> platformData(g_variant_get_child_value(arguments, 1));
  for (const char* key : {platform_data::activationToken, platform_data::startupId}) {
    const char* token = nullptr;
    if (g_variant_lookup(platformData.get(), key, "&s", &token) != FALSE) return token;
  }
  return {};
}

bool isFileUri(std::string_view uri) {
  constexpr std::string_view scheme = "file:";
  return uri.size() > scheme.size() && g_ascii_strncasecmp(uri.data(), scheme.data(), 5) == 0;
}

}  // namespace

struct BusIntake::State {
  State(AcceptedRequests& acceptedRequests, Log& systemLog)
      : accepted(acceptedRequests), log(systemLog) {}
  State(const State&) = delete;
  State& operator=(const State&) = delete;
  ~State() {
    stop();
    if (!connection) return;
    if (closedHandler != 0) g_signal_handler_disconnect(connection.get(), closedHandler);
    g_dbus_connection_close_sync(connection.get(), nullptr, nullptr);
  }

  Status connect();
  Status exportObject();
  Result<bool> claimName();
  Outcome withoutBus(const SystemError& cause);
  Outcome claimOrHandOver(const Launch& launch);
  void acceptLaunch(const Launch& launch);
  void serve();
  void releaseName();
  void stop();

  void handle(std::string_view method, GVariant* arguments, GDBusMethodInvocation* invocation);
  bool acceptOpen(GVariant* arguments);
  bool acceptAction(std::string_view action);
  void accept(const ExternalRequest& request);

  static void onMethodCall(GDBusConnection*, const char*, const char*, const char*,
                           const char* method, GVariant* arguments,
                           GDBusMethodInvocation* invocation, gpointer state) {
    static_cast<State*>(state)->handle(method, arguments, invocation);
  }
  static void onClosed(GDBusConnection*, gboolean, GError*, gpointer state) {
    static_cast<State*>(state)->log.write("the session bus has gone");
    static_cast<State*>(state)->accept({ExternalRequest::Kind::Terminate});
  }
  static gboolean onStop(gpointer state) {
    static_cast<State*>(state)->releaseName();
    return G_SOURCE_REMOVE;
  }

  AcceptedRequests& accepted;
  Log& log;
  GLibPointer<GMainContext> context{g_main_context_new()};
  GLibPointer<GMainLoop> loop{g_main_loop_new(context.get(), FALSE)};
  std::shared_ptr<GDBusConnection> connection;
  gulong closedHandler = 0;
  unsigned registration = 0;
  std::string whyNoRequests;
  std::thread thread;
};

Status BusIntake::State::connect() {
  auto connected = connectToSessionBus(context.get());
  if (!connected) return connected.error();
  connection = std::move(connected).value();
  const ThreadDefaultContext answersComeHere(context.get());
  closedHandler = g_signal_connect(connection.get(), "closed", G_CALLBACK(onClosed), this);
  return exportObject();
}

/// Before the name is claimed, so that nobody finds the name without the object.
Status BusIntake::State::exportObject() {
  static constexpr GDBusInterfaceVTable methods = {onMethodCall, nullptr, nullptr, {}};
  GLibError error;
  const GLibPointer<GDBusNodeInfo> node(g_dbus_node_info_new_for_xml(introspection, error.slot()));
  if (node) {
    registration = g_dbus_connection_register_object(connection.get(), applicationObjectPath,
                                                     node->interfaces[0], &methods, this, nullptr,
                                                     error.slot());
  }
  if (registration == 0) return busError("serve at the session bus", error);
  return success();
}

/// Whether the name is this program's now.
Result<bool> BusIntake::State::claimName() {
  GLibError error;
  const auto answer = callBus(connection.get(), "RequestName",
                              g_variant_new("(su)", identity::applicationId, doNotQueue), error);
  if (!answer) return busError("claim the name on the session bus", error);
  unsigned owner = 0;
  g_variant_get(answer.get(), "(u)", &owner);
  return owner == primaryOwner || owner == alreadyOwner;
}

/// A bus that is there and silent may have a program that runs: this one must not be another.
BusIntake::Outcome BusIntake::State::withoutBus(const SystemError& cause) {
  if (cause.code != std::errc::timed_out) {
    whyNoRequests = cause.describe();
    return Outcome::WithoutBus;
  }
  log.write("the session bus does not answer: " + cause.describe());
  return Outcome::Refused;
}

BusIntake::Outcome BusIntake::State::claimOrHandOver(const Launch& launch) {
  using Clock = std::chrono::steady_clock;
  const auto deadline = Clock::now() + launch.patience;
  for (;;) {
    const Result<bool> claimed = claimName();
    if (!claimed) return withoutBus(claimed.error());
    if (claimed.value()) return Outcome::Primary;
    if (launch.isService) return Outcome::HandedOver;

    const auto left =
        std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
    const auto timeout = static_cast<int>(std::max<std::int64_t>(left.count(), 1));
    switch (handOver(connection.get(), launch, timeout, log)) {
      case HandOver::Accepted:
        return Outcome::HandedOver;
      case HandOver::Failed:
        return Outcome::Refused;
      case HandOver::OwnerGone:
        break;
    }
  }
}

void BusIntake::State::acceptLaunch(const Launch& launch) {
  std::vector<ExternalRequest> requests;
  for (const std::string& file : launch.files) {
    requests.push_back(
        {ExternalRequest::Kind::Open, file,
         launch.activationToken.empty() ? launch.startupId : launch.activationToken});
  }
  if (!accepted.push(requests)) log.write("cannot open so many large files at once");
}

/// For requests without files, which are never too many.
void BusIntake::State::accept(const ExternalRequest& request) {
  [[maybe_unused]] const bool isAccepted = accepted.push({request});
}

void BusIntake::State::serve() {
  if (!whyNoRequests.empty()) {
    log.write("takes no requests from the session bus: " + whyNoRequests);
    return;
  }
  thread = std::thread([this] {
    const ThreadDefaultContext answersComeHere(context.get());
    g_main_loop_run(loop.get());
  });
}

void BusIntake::State::handle(std::string_view method, GVariant* arguments,
                              GDBusMethodInvocation* invocation) {
  if (method == "Activate") {
    accept({ExternalRequest::Kind::Reopen});
  } else if (method == "Open") {
    if (!acceptOpen(arguments)) {
      g_dbus_method_invocation_return_error(invocation, G_DBUS_ERROR, G_DBUS_ERROR_LIMITS_EXCEEDED,
                                            "Too many large files wait to be opened");
      return;
    }
  } else {
    const char* action = nullptr;
    g_variant_get_child(arguments, 0, "&s", &action);
    if (!acceptAction(action)) {
      g_dbus_method_invocation_return_error(invocation, G_DBUS_ERROR, G_DBUS_ERROR_INVALID_ARGS,
                                            "There is no action \"%s\"", action);
      return;
    }
  }
  g_dbus_method_invocation_return_value(invocation, nullptr);
}

bool BusIntake::State::acceptOpen(GVariant* arguments) {
  const GLibPointer<GVariant> uris(g_variant_get_child_value(arguments, 0));
  const std::string token = startupTokenOf(arguments);
  std::vector<ExternalRequest> requests;
  for (gsize index = 0; index < g_variant_n_children(uris.get()); ++index) {
    const char* uri = nullptr;
    g_variant_get_child(uris.get(), index, "&s", &uri);
    const auto url = isFileUri(uri) ? FileURL::urlWithString(uri) : std::nullopt;
    if (url) {
      requests.push_back({ExternalRequest::Kind::Open, url->path(), token});
    } else {
      log.write("cannot open what is no file: " + std::string(uri));
    }
  }
  return accepted.push(requests);
}

bool BusIntake::State::acceptAction(std::string_view action) {
  const bool isQuit = action == "quit";
  if (!isQuit && action != "preferences") return false;
  accept({isQuit ? ExternalRequest::Kind::Terminate : ExternalRequest::Kind::Reopen});
  return true;
}

void BusIntake::State::stop() {
  if (!thread.joinable()) return;
  // Not g_main_context_invoke: it would run the work here when the thread is not in its loop yet.
  const auto stopping = g_idle_source_new();
  g_source_set_callback(stopping, onStop, this, nullptr);
  g_source_attach(stopping, context.get());
  g_source_unref(stopping);
  thread.join();
}

void BusIntake::State::releaseName() {
  if (g_dbus_connection_is_closed(connection.get()) == FALSE) {
    GLibError error;
    const auto answer = callBus(connection.get(), "ReleaseName",
                                g_variant_new("(s)", identity::applicationId), error);
    if (!answer) log.write("release of the name on the session bus: " + error.message());
    // The bus delivers in order: each call that the name brought here came before the answer and
    // waits in the context now.
    while (g_main_context_iteration(context.get(), FALSE) != FALSE) continue;
    g_dbus_connection_unregister_object(connection.get(), registration);
    g_dbus_connection_flush_sync(connection.get(), nullptr, nullptr);
  }
  g_main_loop_quit(loop.get());
}

BusIntake::BusIntake(AcceptedRequests& accepted, Log& log)
    : state_(std::make_unique<State>(accepted, log)) {}

BusIntake::~BusIntake() = default;

BusIntake::Outcome BusIntake::start(const Launch& launch) {
  const Status connected = state_->connect();
  const Outcome outcome =
      connected ? state_->claimOrHandOver(launch) : state_->withoutBus(connected.error());
  if (outcome == Outcome::HandedOver || outcome == Outcome::Refused) return outcome;
  state_->acceptLaunch(launch);
  return outcome;
}

void BusIntake::connectOnly() {
  auto connected = connectToSessionBus();
  if (!connected) return state_->log.write("no session bus: " + connected.error().describe());
  state_->connection = std::move(connected).value();
}

void BusIntake::serve() {
  state_->serve();
}

GDBusConnection* BusIntake::connection() const {
  return state_->connection.get();
}

void BusIntake::stop() {
  state_->stop();
}

}  // namespace tavrin
