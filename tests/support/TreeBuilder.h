#pragma once

#include <sys/types.h>

#include <string>

namespace tavrin::testing {

/// Makes items below a folder; paths are relative to it. Throws std::system_error when it cannot.
class TreeBuilder {
 public:
  explicit TreeBuilder(std::string root) : root_(std::move(root)) {}

  TreeBuilder& folder(const std::string& path, mode_t mode = 0755);
  TreeBuilder& file(const std::string& path, const std::string& contents, mode_t mode = 0644);
  /// A file of `size` bytes with `contents` at `offset` and holes around them.
  TreeBuilder& sparseFile(const std::string& path, off_t size, off_t offset,
                          const std::string& contents);
  TreeBuilder& symbolicLink(const std::string& path, const std::string& target);
  TreeBuilder& hardLink(const std::string& path, const std::string& existing);
  TreeBuilder& pipe(const std::string& path, mode_t mode = 0600);
  TreeBuilder& attribute(const std::string& path, const std::string& name,
                         const std::string& value);
  /// Gives one more user rights; `kind` is "access" or "default".
  TreeBuilder& accessList(const std::string& path, const std::string& kind, uid_t user);
  /// Sets the modification time of the item itself.
  TreeBuilder& modified(const std::string& path, time_t seconds, long nanoseconds);
  /// Folders in each other, all of one name, with a file in the innermost.
  TreeBuilder& nestedFolders(const std::string& path, int levels, const std::string& name);

 private:
  std::string at(const std::string& path) const { return root_ + "/" + path; }

  std::string root_;
};

/// Fills an existing folder with one item of every kind that a user may make.
void buildEveryKind(const std::string& root);

}  // namespace tavrin::testing
