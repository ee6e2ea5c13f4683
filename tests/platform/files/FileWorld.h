#pragma once

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FileManager.h"
#include "platform/SecurityScope.h"

namespace tavrin {

/// A user's files with a program on them: what the contract suites run on. Paths given to its
/// functions are relative to `root`, a folder that nothing covers at first.
class FileWorld {
 public:
  virtual ~FileWorld() = default;

  virtual FileManager& files() = 0;
  virtual SecurityScope& scopes() = 0;

  /// The real path of the folder that all happens in.
  virtual std::string root() const = 0;
  /// The absolute path of what the functions below call `path`; "" is the root.
  std::string at(std::string_view path) const {
    return path.empty() ? root() : root() + "/" + std::string(path);
  }

  // What the user does without the program.
  virtual void addFile(const std::string& path, std::string_view text) = 0;
  virtual void addFolder(const std::string& path) = 0;
  virtual void addSymlink(const std::string& path, const std::string& target) = 0;
  virtual void discardItem(const std::string& path) = 0;
  virtual void renameItem(const std::string& path, const std::string& newPath) = 0;
  /// Every item below the root: its path, and the text of a file or the target of a link; sorted.
  virtual std::vector<std::string> snapshot() const = 0;

  /// The user picks an item, an absolute path, in a panel of the program.
  virtual bool pick(const std::string& absolutePath) = 0;

  /// The user picks a name, there or not, in a save panel; an absolute path.
  virtual bool pickPlace(const std::string& absolutePath) = 0;

  enum class User { Same, Other };
  /// Ends the program and starts it again: no scope is started then.
  virtual void relaunch(User user) = 0;

  /// Absolute path of a folder with the file "icon" that may be read without a grant.
  virtual std::string resources() const = 0;
};

std::unique_ptr<FileWorld> makeLinuxFileWorld();
std::unique_ptr<FileWorld> makeFakeFileWorld();

/// One implementation of the interfaces.
struct Implementation {
  const char* name;
  std::unique_ptr<FileWorld> (*make)();
};

inline std::ostream& operator<<(std::ostream& stream, const Implementation& implementation) {
  return stream << implementation.name;
}

inline constexpr Implementation implementations[] = {{"Linux", makeLinuxFileWorld},
                                                     {"Fake", makeFakeFileWorld}};

inline PropertyList::Data bytesOf(std::string_view text) {
  return {text.begin(), text.end()};
}

inline std::string textOf(const Result<PropertyList::Data>& bytes) {
  return bytes ? std::string(bytes.value().begin(), bytes.value().end())
               : "error: " + bytes.error().describe();
}

}  // namespace tavrin
