#pragma once

#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "foundation/Result.h"
#include "platform/FileManager.h"
#include "platform/linux/HiddenNameChanges.h"
#include "platform/linux/PartialItems.h"

namespace tavrin {

/// The file ".hidden" of one folder, which names the items of the folder that file managers do not
/// show, one a line (as GIO and KIO read it). Changes wait until they are written.
class HiddenNames {
 public:
  /// `folder` is an open folder (O_PATH), borrowed, as is `partials`; `folderPath` is for messages.
  HiddenNames(int folder, std::string folderPath, const PartialItems& partials);

  /// Whether the list has the name, waiting changes counted.
  Result<bool> contains(const std::string& name);

  /// Fails with invalid_argument when a name with a line break is to be hidden, which no list can
  /// hold, and when the list cannot be read.
  Status set(const std::string& name, IsHidden isHidden);

  /// Writes the waiting changes, and touches the items so that open windows show it.
  Status write();

  /// Forgets the waiting changes and what was read: the list itself has gone or come.
  void forget();

 private:
  ItemReference listFile() const;
  Result<std::string> read() const;
  Status load();
  void touchItems(const std::vector<std::string>& names) const;

  int folder_;
  std::string folderPath_;
  const PartialItems& partials_;
  HiddenNameChanges changes_;
  bool isLoaded_ = false;
  std::string list_;
  std::unordered_set<std::string_view> names_;
  /// Names that wait to be hidden, once the list was read.
  std::unordered_set<std::string> newNames_;
};

/// The name of the list.
inline constexpr const char* hiddenListName = ".hidden";

}  // namespace tavrin
