#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "foundation/FileURL.h"
#include "platform/SavePanel.h"
#include "platform/Window.h"

namespace tavrin {

/// Rules that a panel asks about each item it shows, as NSOpenSavePanelDelegate.
class OpenSavePanelDelegate {
 public:
  virtual ~OpenSavePanelDelegate() = default;

  /// Whether `candidate` may be picked. An item that may not is shown greyed out, and cannot be
  /// chosen by mouse, keyboard or typed path.
  virtual bool panelShouldEnableURL(const FileURL& candidate) const = 0;
};

/// A panel in which the user picks existing files or folders, as NSOpenPanel. What the user picks
/// is granted to the program (see SecurityScope). Used on the main thread.
class OpenPanel {
 public:
  virtual ~OpenPanel() = default;

  virtual void setCanCreateDirectories(bool flag) = 0;
  virtual void setCanChooseFiles(bool flag) = 0;
  virtual void setCanChooseDirectories(bool flag) = 0;
  virtual void setAllowsMultipleSelection(bool flag) = 0;
  /// The label of the confirm button.
  virtual void setPrompt(const std::string& prompt) = 0;
  virtual void setTitle(const std::string& title) = 0;
  virtual void setMessage(const std::string& message) = 0;
  virtual void setShowsHiddenFiles(bool flag) = 0;
  virtual void setExtensionHidden(bool flag) = 0;
  /// The folder to show at first; for the URL of a file, its parent with the file selected.
  virtual void setDirectoryURL(const FileURL& url) = 0;
  /// `delegate` outlives the panel; nullptr enables every item.
  virtual void setDelegate(const OpenSavePanelDelegate* delegate) = 0;
  /// The extensions, without a dot and in any case, that a file may have; others are greyed out.
  /// With none every file may be picked. Folders are not concerned.
  virtual void setAllowedFileTypes(std::vector<std::string> extensions) = 0;
  /// A plain, unselectable text (an accessory view, disclosed) of at most 800 points in width.
  virtual void setAccessoryText(const std::string& text) = 0;

  enum class Response { Cancel = 0, OK = 1 };

  /// Shows the panel and returns when the user has ended it. With nothing selected, confirming
  /// picks the folder that the panel shows, where folders can be chosen and the delegate allows it.
  virtual Response runModal() = 0;

  /// Shows the panel for `window`, or on its own with nullptr, and returns at once; `completion` is
  /// called when it ends and destroyed after it. The panel keeps itself alive until then.
  virtual void beginSheetModalForWindow(Window* window,
                                        std::function<void(Response)> completion) = 0;

  /// What was picked; empty before the end and after Cancel.
  virtual std::vector<FileURL> urls() const = 0;
};

/// Makes panels.
class PanelProvider {
 public:
  virtual ~PanelProvider() = default;
  virtual std::shared_ptr<OpenPanel> openPanel() = 0;
  virtual std::shared_ptr<SavePanel> savePanel() = 0;
};

}  // namespace tavrin
