#pragma once

#include <string>

#include "platform/Pasteboard.h"
#include "platform/linux/DragSelection.h"

namespace tavrin {

/// Pasteboards as files, "$XDG_RUNTIME_DIR/app.tavrin.Tavrin/pasteboards/<name>": a list of URLs
/// is a text/uri-list (RFC 2483: a URL and CR LF for each), a string its own bytes. A cleared
/// pasteboard has no file. Files are replaced by renaming, so that a program which watches the
/// folder sees one event for each content. What is on the drag pasteboard is X11's XdndSelection
/// too.
class LinuxPasteboardProvider final : public PasteboardProvider {
 public:
  /// In the folder of the session; without $XDG_RUNTIME_DIR no pasteboard takes content.
  LinuxPasteboardProvider();

  std::unique_ptr<Pasteboard> pasteboardWithName(const std::string& name) override;
  std::unique_ptr<Pasteboard> pasteboardWithUniqueName() override;

 private:
  std::string folder_;
  DragSelection dragSelection_;
};

}  // namespace tavrin
