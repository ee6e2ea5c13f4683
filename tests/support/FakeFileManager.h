#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/FileManager.h"

namespace tavrin {

/// FileManager over a tree of files, folders and symbolic links in memory. Scopes are enforced once
/// FakeSecurityScope::enforce was called; until then everything is covered. Not for several
/// threads.
class FakeFileManager final : public FileManager {
 public:
  FakeFileManager();
  ~FakeFileManager() override;

  bool fileExistsAtPath(const std::string& path) const override;
  bool isDirectoryAtPath(const std::string& path) const override;
  std::string resolvingSymlinksInPath(const std::string& path) const override;
  Result<std::vector<std::string>> contentsOfDirectoryAtPath(
      const std::string& path) const override;
  Result<PropertyList::Data> contentsAtPath(const std::string& path) const override;
  Status createFileAtPath(const std::string& path, const PropertyList::Data& contents,
                          Replace replace) override;
  Status createDirectoryAtPath(const std::string& path,
                               IntermediateDirectories intermediates) override;
  Status copyItemAtPath(const std::string& source, const std::string& destination) override;
  Status copyFileReplacingAtPath(const std::string& source,
                                 const std::string& destination) override;
  Status moveItemAtPath(const std::string& source, const std::string& destination) override;
  Status removeItemAtPath(const std::string& path) override;
  Status setHiddenAtPath(const std::string& path, IsHidden isHidden) override;
  [[nodiscard]] Batch batch() override;
  /// "/containers/<group>", made when missing.
  std::optional<std::string> containerPathForSecurityApplicationGroupIdentifier(
      const std::string& groupIdentifier) override;

  // What another process, or the user, does: it needs no scope, makes missing parents, and throws
  // std::logic_error where the tree does not allow it.

  void addFile(const std::string& path, std::string_view text = "");
  void addFolder(const std::string& path);
  void addSymlink(const std::string& path, const std::string& target);
  /// Takes an item with all that is in it away.
  void discardItem(const std::string& path);
  /// Moves an item to a free name; it stays the same item.
  void renameItem(const std::string& path, const std::string& newPath);

  // What a test looks at.

  /// The bytes of the regular file at a path; nothing when there is none.
  std::optional<std::string> textOfFile(const std::string& path) const;
  /// Where the symbolic link at a path points; nothing when there is none.
  std::optional<std::string> targetOfSymlink(const std::string& path) const;
  bool isHidden(const std::string& path) const;
  /// How many items were moved while no batch held their folders.
  int movesOutsideBatches() const { return movesOutsideBatches_; }
  /// The paths of all items but "/", sorted. No link is followed.
  std::vector<std::string> allPaths() const;
  /// A number that is the item's own as long as it exists and no other's ever; nothing for a path
  /// that leads, through symbolic links, to no item.
  std::optional<std::uint64_t> identityOfItem(const std::string& path) const;

  // Faults.

  /// The next operation that can fail fails with `cause` and changes nothing.
  void failNext(std::errc cause);
  /// Every operation that is given `path`, as its only, first or second path, fails with `cause`
  /// and changes nothing.
  void failOn(const std::string& path, std::errc cause);
  void stopFailing();

  /// Answers whether a started scope covers a real path.
  using Coverage = std::function<bool(const std::string& realPath)>;
  /// From now on operations need `covers`, the containers and the resources excepted.
  void enforceScopes(Coverage covers);
  /// Places that a file may be created at, besides those that are covered.
  void allowCreation(Coverage isPickedPlace);
  /// A folder that may be read without a scope, as the resources of the program's bundle.
  void setResourceFolder(const std::string& path);

 private:
  struct Item;
  struct Place;
  enum class Access { Read, Change, Create };

  static std::shared_ptr<Item> folderCopy(const Item& item, std::uint64_t& lastIdentity);
  static void collectPaths(const Item& folder, const std::string& path,
                           std::vector<std::string>& paths);

  std::shared_ptr<Item> makeItem() const;
  Result<std::pair<std::string, std::shared_ptr<Item>>> follow(const std::string& path) const;
  Result<Place> place(const std::string& operation, const std::string& path, Access access) const;
  Result<Place> freePlace(const std::string& operation, const std::string& path,
                          Access access = Access::Change) const;
  Status makeMissingFolders(const std::string& path);
  bool isCovered(const std::string& realPath, Access access) const;
  std::optional<SystemError> fault(const std::string& operation, const std::string& path,
                                   const std::string& otherPath = "") const;
  void put(const std::string& path, std::shared_ptr<Item> item);
  std::shared_ptr<Item> find(const std::string& path) const;

  mutable std::uint64_t lastIdentity_ = 0;
  std::shared_ptr<Item> root_;
  Coverage covers_;
  Coverage isPickedPlace_;
  std::string resourceFolder_;
  mutable std::optional<std::errc> nextFault_;
  std::map<std::string, std::errc> faults_;
  Batch batches_ = std::make_shared<int>(0);
  int movesOutsideBatches_ = 0;
};

}  // namespace tavrin
