#pragma once

#include <string>
#include <vector>

#include "platform/Log.h"
#include "platform/LoginItems.h"

namespace tavrin {

/// The autostart entries of the session (Desktop Application Autostart Specification): the user's
/// folder and the system's, where a user's file stands in for a system's of the same name. A list's
/// name of an entry is its file name; the order is that of the names.
class LinuxLoginItems final : public LoginItems {
 public:
  /// `log` outlives the object.
  explicit LinuxLoginItems(Log& log);

  /// The entries that this session starts.
  std::vector<Item> snapshot() const override;

  /// Writes the program's own entry, in the place of an older one.
  void insertLast(const std::string& programPath) override;

  /// Deletes a user's entry; switches a system's one off for this user.
  void remove(const Item& item) override;

 private:
  void writeUserEntry(const std::string& fileName, const std::string& contents);

  Log& log_;
};

}  // namespace tavrin
