#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/Log.h"
#include "platform/Workspace.h"
#include "platform/linux/ApplicationTable.h"
#include "platform/linux/ItemIcons.h"
#include "platform/linux/SleepSignal.h"

typedef struct _GDBusConnection GDBusConnection;  // NOLINT(bugprone-reserved-identifier)

namespace tavrin {

class FileViewer;
class FileViewerRestart;

/// The desktop around the program: the file manager behind org.freedesktop.FileManager1, or else
/// the default application for folders; logind for the system's sleep.
class LinuxWorkspace final : public Workspace {
 public:
  /// `connection` is the session bus, null when there is none; without `itemIcons` no item's icon
  /// can be set. All outlive the workspace.
  LinuxWorkspace(GDBusConnection* connection, ApplicationTable& applications, ItemIcons* itemIcons,
                 Log& log);
  ~LinuxWorkspace() override;

  void selectNoFileInFileViewerRootedAtPath(const std::string& rootPath) override;
  void selectFile(const std::string& path, const std::string& rootPath) override;
  void openFile(const std::string& path) override;
  std::optional<PropertyList::Data> iconForFile(const std::string& path, int sidePixels) override;
  void openURL(const std::string& url) override;

  bool openFileWithApplication(const std::string& path,
                               const std::string& applicationName) override;

  bool setIcon(const Image* image, const std::string& path) override;

  /// A bundle is a folder: it is started by the program in it that is named like the folder without
  /// its extension, or "AppRun". The launched program is no child of this one. A failure reaches
  /// the log.
  bool launchApplication(const std::string& path) override;

  void restartFileViewer() override;

  [[nodiscard]] Observation observeWillSleep(std::function<void()> willSleep) override;

 private:
  ApplicationTable& applications_;
  ItemIcons* itemIcons_;
  Log& log_;
  std::unique_ptr<FileViewer> fileViewer_;
  std::unique_ptr<FileViewerRestart> fileViewerRestart_;
  SleepSignal sleepSignal_;
};

}  // namespace tavrin
