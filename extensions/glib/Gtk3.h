#pragma once

#include <gtk/gtk.h>

#include <string>

namespace tavrin {

/// Puts a text on the clipboard; a clipboard manager keeps it when the process ends.
inline void copyTextByGtk3(const std::string& text) {
  GtkClipboard* clipboard = gtk_clipboard_get(GDK_SELECTION_CLIPBOARD);
  gtk_clipboard_set_text(clipboard, text.data(), static_cast<int>(text.size()));
  gtk_clipboard_set_can_store(clipboard, nullptr, 0);
}

}  // namespace tavrin
