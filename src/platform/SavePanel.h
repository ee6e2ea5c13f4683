#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "foundation/FileURL.h"

namespace tavrin {

/// A label and a pop-up button below a panel's own controls.
struct PopUpAccessory {
  std::string label;
  /// What the pop-up lists, in order; the first is shown.
  std::vector<std::string> items;
  /// Called with the zero-based index of the item that the user picks.
  std::function<void(std::size_t index)> action;
};

/// A panel in which the user names a file that is to be made, as NSSavePanel. The place that the
/// user picks is granted to the program (see SecurityScope). Used on the main thread.
///
/// A name that is empty, is "." or "..", holds a "/" or is too long for a file cannot be confirmed,
/// nor one that a folder has. Before a name that is taken is confirmed, the panel asks whether to
/// replace what has it.
class SavePanel {
 public:
  virtual ~SavePanel() = default;

  /// The window's level: 0 for that of other windows, more for above them.
  virtual void setLevel(int level) = 0;
  /// Whether a name may keep an extension that is none of the allowed types. It may not at first.
  virtual void setAllowsOtherFileTypes(bool flag) = 0;
  virtual void setTitle(const std::string& title) = 0;
  /// The folder to show at first; where it is missing, the nearest one above it.
  virtual void setDirectoryURL(const FileURL& url) = 0;
  /// The name to propose, with or without an extension.
  virtual void setNameFieldStringValue(const std::string& name) = 0;
  /// The extensions, without a dot, that a file may have; with none, any name stands as it is. A
  /// name without one of them gets the first. In a panel that is up this shows with the next
  /// `validateVisibleColumns`.
  virtual void setAllowedFileTypes(const std::vector<std::string>& extensions) = 0;
  /// Shows the panel's rules as they are now: the name gets the extension of the allowed type.
  virtual void validateVisibleColumns() = 0;
  virtual void setAccessoryView(const PopUpAccessory& accessory) = 0;

  enum class Response { Cancel = 0, OK = 1 };

  /// Shows the panel and returns when the user has ended it.
  virtual Response runModal() = 0;

  /// The file to make; nothing before the end and after Cancel.
  virtual std::optional<FileURL> url() const = 0;

  /// Whether the user has agreed to replace what stands at the URL.
  virtual bool mayReplace() const = 0;
};

}  // namespace tavrin
