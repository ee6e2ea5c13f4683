#include "platform/linux/DragSelection.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <QSocketNotifier>
#include <array>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace tavrin {

namespace {

struct FreeDeleter {
  void operator()(void* memory) const { std::free(memory); }
};

template <typename Type>
using XcbPointer = std::unique_ptr<Type, FreeDeleter>;

struct ConnectionDeleter {
  void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};

/// What a request takes besides the list.
constexpr std::size_t roomOfRequest = 64;
constexpr std::size_t unitOfRequests = 4;

constexpr xcb_atom_t noAtom = XCB_ATOM_NONE;

bool isSessionOfX() {
  return qGuiApp != nullptr && QGuiApplication::platformName() == QLatin1String("xcb") &&
         qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY");
}

}  // namespace

/// A connection and a window of their own, so that no drag of Qt's is in the way.
class DragSelection::Owner {
 public:
  /// Null when no X server answers.
  static std::unique_ptr<Owner> connect();

  void own(std::string list);
  void giveUp();

 private:
  using Connection = std::unique_ptr<xcb_connection_t, ConnectionDeleter>;

  explicit Owner(Connection connection);
  xcb_atom_t atom(const char* name) const;
  void handleEvents();
  void answer(const xcb_selection_request_event_t& request);
  bool giveTarget(const xcb_selection_request_event_t& request, xcb_atom_t property);

  Connection connection_;
  xcb_window_t window_;
  xcb_atom_t selection_;
  xcb_atom_t targets_;
  xcb_atom_t uriListTarget_;
  std::string list_;
  QSocketNotifier notifier_;
};

std::unique_ptr<DragSelection::Owner> DragSelection::Owner::connect() {
  Connection connection(xcb_connect(nullptr, nullptr));
  if (xcb_connection_has_error(connection.get()) != 0) return nullptr;
  return std::unique_ptr<Owner>(new Owner(std::move(connection)));
}

DragSelection::Owner::Owner(Connection connection)
    : connection_(std::move(connection)),
      window_(xcb_generate_id(connection_.get())),
      selection_(atom("XdndSelection")),
      targets_(atom("TARGETS")),
      uriListTarget_(atom("text/uri-list")),
      notifier_(xcb_get_file_descriptor(connection_.get()), QSocketNotifier::Read) {
  const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_.get())).data;
  xcb_create_window(connection_.get(), XCB_COPY_FROM_PARENT, window_, screen->root, 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, screen->root_visual, 0, nullptr);
  QObject::connect(&notifier_, &QSocketNotifier::activated, [this] { handleEvents(); });
}

xcb_atom_t DragSelection::Owner::atom(const char* name) const {
  const auto asked =
      xcb_intern_atom(connection_.get(), 0, static_cast<std::uint16_t>(std::strlen(name)), name);
  const XcbPointer<xcb_intern_atom_reply_t> reply(
      xcb_intern_atom_reply(connection_.get(), asked, nullptr));
  return reply ? reply->atom : noAtom;
}

void DragSelection::Owner::own(std::string list) {
  list_ = std::move(list);
  xcb_set_selection_owner(connection_.get(), window_, selection_, XCB_CURRENT_TIME);
  xcb_flush(connection_.get());
}

void DragSelection::Owner::giveUp() {
  list_.clear();
  const XcbPointer<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
      connection_.get(), xcb_get_selection_owner(connection_.get(), selection_), nullptr));
  if (owner && owner->owner == window_) {
    xcb_set_selection_owner(connection_.get(), XCB_WINDOW_NONE, selection_, XCB_CURRENT_TIME);
    xcb_flush(connection_.get());
  }
  // What came with the reply wakes nobody.
  handleEvents();
}

void DragSelection::Owner::handleEvents() {
  constexpr std::uint8_t kindOfEvent = 0x7f;
  while (const XcbPointer<xcb_generic_event_t> event{xcb_poll_for_event(connection_.get())}) {
    if ((event->response_type & kindOfEvent) != XCB_SELECTION_REQUEST) continue;
    answer(*reinterpret_cast<const xcb_selection_request_event_t*>(event.get()));
  }
  // A lost connection is readable for ever.
  if (xcb_connection_has_error(connection_.get()) != 0) notifier_.setEnabled(false);
}

void DragSelection::Owner::answer(const xcb_selection_request_event_t& request) {
  // A requester of old leaves the property to the owner.
  const xcb_atom_t property = request.property == noAtom ? request.target : request.property;
  xcb_selection_notify_event_t notice = {};
  notice.response_type = XCB_SELECTION_NOTIFY;
  notice.time = request.time;
  notice.requestor = request.requestor;
  notice.selection = request.selection;
  notice.target = request.target;
  notice.property = giveTarget(request, property) ? property : noAtom;
  xcb_send_event(connection_.get(), 0, request.requestor, XCB_EVENT_MASK_NO_EVENT,
                 reinterpret_cast<const char*>(&notice));
  xcb_flush(connection_.get());
}

bool DragSelection::Owner::giveTarget(const xcb_selection_request_event_t& request,
                                      xcb_atom_t property) {
  constexpr std::uint8_t bytes = 8;
  constexpr std::uint8_t words = 32;
  if (request.selection != selection_) return false;
  if (request.target == targets_) {
    const std::array<xcb_atom_t, 2> targets = {targets_, uriListTarget_};
    xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, request.requestor, property,
                        XCB_ATOM_ATOM, words, targets.size(), targets.data());
    return true;
  }
  const std::size_t room =
      xcb_get_maximum_request_length(connection_.get()) * unitOfRequests - roomOfRequest;
  if (request.target != uriListTarget_ || list_.size() > room) return false;
  xcb_change_property(connection_.get(), XCB_PROP_MODE_REPLACE, request.requestor, property,
                      uriListTarget_, bytes, static_cast<std::uint32_t>(list_.size()),
                      list_.data());
  return true;
}

DragSelection::DragSelection() = default;
DragSelection::~DragSelection() = default;

void DragSelection::setUriList(const std::string& list) {
  if (!owner_ && isSessionOfX()) owner_ = Owner::connect();
  if (owner_) owner_->own(list);
}

void DragSelection::clear() {
  if (owner_) owner_->giveUp();
}

}  // namespace tavrin
