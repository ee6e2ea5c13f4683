// Another program of the X server: prints what a selection holds for a target, as
// "selection-reader XdndSelection text/uri-list". Exits with 1 when nobody gives it.
#include <poll.h>
#include <xcb/xcb.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

constexpr int patienceMilliseconds = 20000;

struct FreeDeleter {
  void operator()(void* memory) const { std::free(memory); }
};

using Event = std::unique_ptr<xcb_generic_event_t, FreeDeleter>;

xcb_atom_t atom(xcb_connection_t* connection, const char* name) {
  const auto asked =
      xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(std::strlen(name)), name);
  const std::unique_ptr<xcb_intern_atom_reply_t, FreeDeleter> reply(
      xcb_intern_atom_reply(connection, asked, nullptr));
  return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

/// The property that the answer names; none when the request was refused or nobody answers.
xcb_atom_t waitForAnswer(xcb_connection_t* connection) {
  pollfd waiting = {xcb_get_file_descriptor(connection), POLLIN, 0};
  while (true) {
    while (const Event event{xcb_poll_for_event(connection)}) {
      if ((event->response_type & 0x7f) != XCB_SELECTION_NOTIFY) continue;
      return reinterpret_cast<const xcb_selection_notify_event_t*>(event.get())->property;
    }
    if (xcb_connection_has_error(connection) != 0) return XCB_ATOM_NONE;
    if (::poll(&waiting, 1, patienceMilliseconds) <= 0) return XCB_ATOM_NONE;
  }
}

void printProperty(xcb_connection_t* connection, xcb_window_t window, xcb_atom_t property) {
  constexpr std::uint32_t everything = 1U << 28U;
  const std::unique_ptr<xcb_get_property_reply_t, FreeDeleter> reply(xcb_get_property_reply(
      connection,
      xcb_get_property(connection, 0, window, property, XCB_GET_PROPERTY_TYPE_ANY, 0, everything),
      nullptr));
  if (!reply) return;
  std::fwrite(xcb_get_property_value(reply.get()), 1,
              static_cast<std::size_t>(xcb_get_property_value_length(reply.get())), stdout);
}

}  // namespace

int main(int argumentCount, char** arguments) {
  if (argumentCount != 3) return 2;
  xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
  if (xcb_connection_has_error(connection) != 0) return 2;
  const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection)).data;
  const xcb_window_t window = xcb_generate_id(connection);
  xcb_create_window(connection, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, screen->root_visual, 0, nullptr);
  xcb_convert_selection(connection, window, atom(connection, arguments[1]),
                        atom(connection, arguments[2]), atom(connection, "ANSWER"),
                        XCB_CURRENT_TIME);
  xcb_flush(connection);
  const xcb_atom_t answer = waitForAnswer(connection);
  if (answer != XCB_ATOM_NONE) printProperty(connection, window, answer);
  xcb_disconnect(connection);
  return answer == XCB_ATOM_NONE ? 1 : 0;
}
