#pragma once

#include <memory>
#include <string>

namespace tavrin {

/// The drag pasteboard for programs of the X server: the selection XdndSelection (XDND, the
/// freedesktop.org drag-and-drop protocol) with the one target text/uri-list. Another program that
/// begins a drag takes it over. Used on the main thread, whose event loop answers the others.
class DragSelection {
 public:
  DragSelection();
  ~DragSelection();
  DragSelection(const DragSelection&) = delete;
  DragSelection& operator=(const DragSelection&) = delete;

  /// Owns the selection with this list. Does nothing without an X server, and in a session of
  /// Wayland, where the owner of this selection counts as somebody who drags.
  void setUriList(const std::string& list);

  /// Gives the selection up.
  void clear();

 private:
  class Owner;
  std::unique_ptr<Owner> owner_;
};

}  // namespace tavrin
