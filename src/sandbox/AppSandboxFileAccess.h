#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/Platform.h"
#include "sandbox/AppSandboxFileAccessProtocol.h"

namespace tavrin {

/// Whether a fresh grant of the user is stored for later runs.
enum class PersistPermission { No, Yes };

/// Obtains access to folders: by a stored bookmark without any user interface, or else by asking
/// the user in an open panel in which only the item or one of its ancestors can be picked.
///
/// An object holds no state of a request; requests may come from any thread. The panel runs on the
/// main thread, which a request on another thread waits for; so a thread that the main thread waits
/// for must not ask.
class AppSandboxFileAccess {
 public:
  /// Work that runs inside a grant, on the calling thread, before the call returns.
  using Block = std::function<void()>;
  /// Work that is handed the granted URL, which may be an ancestor of the one asked for, and its
  /// bookmark where there is one.
  using ScopedBlock = std::function<void(const FileURL& securityScopedURL,
                                         const std::optional<PropertyList::Data>& bookmark)>;

  /// A new access object, made by the constructor below.
  static std::unique_ptr<AppSandboxFileAccess> fileAccessWithMessage(
      Platform& platform, UserDefaults& standardUserDefaults, const std::string& message);

  /// `message` is the panel's text with the program's display name put in for its first "%@".
  /// `platform` and `standardUserDefaults` outlive this object.
  AppSandboxFileAccess(Platform& platform, UserDefaults& standardUserDefaults,
                       const std::string& message);

  /// The panel's title.
  std::string title;
  /// The text in the panel's accessory view.
  std::string message;
  /// The label of the panel's confirm button.
  std::string prompt;

  /// Replaces the bookmark store; it is held weakly. Given nothing, the object's own store takes
  /// over again, as it does when the store has gone.
  void setBookmarkPersistanceDelegate(
      const std::shared_ptr<AppSandboxFileAccessProtocol>& delegate);
  std::shared_ptr<AppSandboxFileAccessProtocol> bookmarkPersistanceDelegate() const;

  /// Shows the panel for a URL, in the nearest existing folder. Returns what the user picked;
  /// nothing when the user cancelled.
  std::optional<FileURL> askPermissionForURL(const FileURL& url);

  /// Makes the bookmark of a granted URL and stores it. Returns it; nothing when it cannot be made.
  std::optional<PropertyList::Data> persistPermissionURL(const FileURL& url);
  std::optional<PropertyList::Data> persistPermissionPath(const std::string& path);

  /// Obtains access and calls `block`, which may be empty. False when the user cancelled, and for a
  /// path that is longer than any real one. A stale bookmark that still leads somewhere is made
  /// anew and stored whatever `persistPermission` says.
  bool requestAccessPermissionsForFileURL(const FileURL& fileURL,
                                          PersistPermission persistPermission,
                                          const ScopedBlock& block);
  bool requestAccessPermissionsForFilePath(const std::string& path,
                                           PersistPermission persistPermission,
                                           const ScopedBlock& block);

  /// As requestAccessPermissionsForFileURL, with the scope started before `block` runs. The scope
  /// stays open until the process ends. An exception of the block passes through.
  bool accessFileURL(const FileURL& fileURL, PersistPermission persistPermission,
                     const Block& block);
  bool accessFileURL(const FileURL& fileURL, const Block& block,
                     PersistPermission persistPermission);

  /// As accessFileURL for a path as it stands; a relative one is taken relative to "/", the
  /// program's working folder.
  bool accessFilePath(const std::string& path, PersistPermission persistPermission,
                      const Block& block);
  bool accessFilePath(const std::string& path, const Block& block,
                      PersistPermission persistPermission);

 private:
  std::string nearestExistingPath(const FileURL& url) const;
  std::optional<FileURL> runPanel(const FileURL& directory, const OpenSavePanelDelegate& rule);
  bool usesStaleBookmark(const FileURL& requested, const std::optional<FileURL>& resolved,
                         const ScopedBlock& block);

  Platform& platform_;
  std::shared_ptr<AppSandboxFileAccessProtocol> defaultDelegate_;
  std::weak_ptr<AppSandboxFileAccessProtocol> bookmarkPersistanceDelegate_;
};

}  // namespace tavrin
