#pragma once

#include <memory>
#include <string>

#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/linux/FileOperation.h"
#include "platform/linux/HeldFolders.h"
#include "platform/linux/LinuxSecurityScope.h"
#include "platform/linux/OperationWatch.h"
#include "platform/linux/PartialItems.h"

namespace tavrin {

/// FileManager by handles beneath the started scopes (see StartedScopes).
class LinuxFileManager final : public FileManager {
 public:
  /// Containers and the records of partial items lie below $XDG_DATA_HOME. `watch` sees what may
  /// take long; it outlives this object, and without one nobody does.
  LinuxFileManager(const LinuxSecurityScope& securityScope, Log& log,
                   OperationWatch* watch = nullptr);

  /// The same with another folder, an absolute path, than $XDG_DATA_HOME.
  LinuxFileManager(const LinuxSecurityScope& securityScope, Log& log, std::string dataFolder,
                   OperationWatch* watch = nullptr);

  bool fileExistsAtPath(const std::string& path) const override;
  bool isDirectoryAtPath(const std::string& path) const override;
  std::string resolvingSymlinksInPath(const std::string& path) const override;
  Result<std::vector<std::string>> contentsOfDirectoryAtPath(
      const std::string& path) const override;
  /// A file of more than a gibibyte is file_too_large.
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
  /// By the list ".hidden" of the folder, which every file manager reads. A name with a line break
  /// cannot be hidden (invalid_argument).
  Status setHiddenAtPath(const std::string& path, IsHidden isHidden) override;
  [[nodiscard]] Batch batch() override;
  /// "$XDG_DATA_HOME/<group>"; nothing for an identifier that is no file name.
  std::optional<std::string> containerPathForSecurityApplicationGroupIdentifier(
      const std::string& groupIdentifier) override;

  /// Writes what waits for the end of a batch; for an end of the program in the middle of one.
  void writeWaitingChanges() { folders_.writeWaitingChanges(); }

  /// Removes what killed processes of the program have left half made. For an idle moment.
  void clearLeftovers();
  /// Lets clearLeftovers return soon, for good; from any thread.
  void stopClearing();

  /// The records of partial items, for others who write files.
  const PartialItems& partialItems() const { return partialItems_; }

 private:
  using Copy = Status(const ItemReference& source, const ItemReference& destination,
                      PartialItems& partials, FileOperation& operation);
  Status copy(const std::string& source, const std::string& destination, Copy* copyItem);
  std::unique_ptr<FileOperation> begin(OperationKind kind, const std::string& path);
  Status writeMovedList(const ItemPlace& item);
  Status dropHiddenName(const ItemPlace& item);
  Status carryHiddenName(const ItemPlace& from, const ItemPlace& to);
  void noteHidingFailure(HeldFolder& folder, const Status& status);

  const StartedScopes& scopes_;
  Log& log_;
  OperationWatch* watch_;
  std::string dataFolder_;
  PartialItems partialItems_;
  FileOperation clearing_;
  HeldFolders folders_;
};

}  // namespace tavrin
