#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/PropertyList.h"
#include "foundation/Result.h"

namespace tavrin {

enum class IsHidden { No, Yes };

/// Work on files, as NSFileManager. Paths are absolute byte strings; a relative one is refused.
///
/// Reading or changing anything needs a started security scope that covers it (see SecurityScope);
/// the group container needs none, and resources of the program's bundle may be read. Without one
/// an operation fails with permission_denied and touches nothing. A path is resolved to the real
/// folder of the item first; the item itself, its last component, is never followed when it is a
/// symbolic link. What the operation then touches lies below the scope's folder, whatever another
/// process swaps meanwhile.
///
/// Nothing is ever replaced unless the caller says so: an operation whose target name is taken
/// fails with file_exists and leaves it as it was. An operation that fails leaves no part of its
/// result behind. When the process is killed in the middle, every item stands whole under its old
/// name, its new one, or both.
class FileManager {
 public:
  virtual ~FileManager() = default;

  /// True when an item stands at the path. A symbolic link counts as an item whether or not its
  /// target exists. Needs no scope. A path that cannot be searched has no items.
  virtual bool fileExistsAtPath(const std::string& path) const = 0;

  /// True when the path leads, through symbolic links, to a folder. Needs no scope.
  virtual bool isDirectoryAtPath(const std::string& path) const = 0;

  /// The path with every symbolic link resolved as far as its components exist; components that do
  /// not exist are kept as they are (NSString stringByResolvingSymlinksInPath). Needs no scope.
  virtual std::string resolvingSymlinksInPath(const std::string& path) const = 0;

  /// The names in a folder, without "." and "..", in no order.
  virtual Result<std::vector<std::string>> contentsOfDirectoryAtPath(
      const std::string& path) const = 0;

  /// The bytes of a regular file (through a link as its last component only when the link leads to
  /// a covered place). Anything else than a regular file fails without blocking.
  virtual Result<PropertyList::Data> contentsAtPath(const std::string& path) const = 0;

  /// What becomes of an item that has the name already.
  enum class Replace { No, Yes };
  /// Creates a regular file with the given bytes. The name appears when the file is whole. With
  /// `Replace::Yes` the file takes the place of one that has the name: in one step, once its bytes
  /// are durable, so that the name always stands for the old file or the new one, whole. A symbolic
  /// link is replaced itself; a folder is never replaced (is_a_directory). A place that the user
  /// picked for a file (see SecurityScope) is covered too.
  virtual Status createFileAtPath(const std::string& path, const PropertyList::Data& contents,
                                  Replace replace) = 0;

  enum class IntermediateDirectories { No, Create };
  /// Creates a folder. With `Create`, missing parents are created too and a folder that is there
  /// already is success; with `No` it is file_exists.
  virtual Status createDirectoryAtPath(const std::string& path,
                                       IntermediateDirectories intermediates) = 0;

  /// Copies an item, a folder with all that is in it, to a name that is free. Modes, owners (as far
  /// as the user may set them), times, extended attributes, access control lists, hard links inside
  /// the tree, holes and symbolic links arrive as they were. A folder cannot be copied into itself
  /// (invalid_argument). The source is as before.
  virtual Status copyItemAtPath(const std::string& source, const std::string& destination) = 0;

  /// Copies a regular file with all that copyItemAtPath keeps of it. The copy takes the place of an
  /// item that has the name as createFileAtPath's file does with `Replace::Yes`: in one step, once
  /// it is durable, and never that of a folder (is_a_directory). The copy has no hidden flag. A
  /// source that is a folder fails with is_a_directory, a link with too_many_symbolic_link_levels,
  /// any other kind with invalid_argument, without blocking.
  virtual Status copyFileReplacingAtPath(const std::string& source,
                                         const std::string& destination) = 0;

  /// Moves an item to a name that is free: by one rename within a file system, else by a copy that
  /// is durable before the source is removed. Nothing of the source is removed that the copy does
  /// not hold: what came into it or changed during the copy stays, and the move fails with
  /// device_or_resource_busy with both standing. A folder cannot be moved into itself.
  virtual Status moveItemAtPath(const std::string& source, const std::string& destination) = 0;

  /// Removes an item, a folder with all that is in it, without following links and without entering
  /// another file system that is mounted inside. Stops at the first item that cannot be removed.
  virtual Status removeItemAtPath(const std::string& path) = 0;

  /// Hides an item from file viewers, or shows it again (NSURLIsHiddenKey), without renaming it.
  /// The flag is the item's: moving takes it along, removing drops it, and a new file or a copy
  /// does not have it. Setting it as it is is success.
  virtual Status setHiddenAtPath(const std::string& path, IsHidden isHidden) = 0;

  /// Keeps a series of operations together while it lives; batches may lie within each other.
  using Batch = std::shared_ptr<void>;
  /// Begins a series: the folders that its operations work in are looked for once and held, and
  /// changes of hidden flags may be written together at its end; a failure of that writing then
  /// reaches the log. Batches and what is done within them belong to the main thread.
  [[nodiscard]] virtual Batch batch() = 0;

  /// The folder that the group's programs share; nothing when it cannot be made.
  virtual std::optional<std::string> containerPathForSecurityApplicationGroupIdentifier(
      const std::string& groupIdentifier) = 0;
};

}  // namespace tavrin
