#pragma once

#include "platform/Platform.h"
#include "tests/support/FakeAlert.h"
#include "tests/support/FakeBundle.h"
#include "tests/support/FakeDesktop.h"
#include "tests/support/FakeExtensionController.h"
#include "tests/support/FakeFileManager.h"
#include "tests/support/FakeImages.h"
#include "tests/support/FakeLog.h"
#include "tests/support/FakeLoginItems.h"
#include "tests/support/FakeMainLoop.h"
#include "tests/support/FakePasteboard.h"
#include "tests/support/FakePropertyLists.h"
#include "tests/support/FakeSecurityScope.h"
#include "tests/support/FakeServices.h"
#include "tests/support/FakeShell.h"
#include "tests/support/FakeUniformTypes.h"
#include "tests/support/FakeUserDefaults.h"

namespace tavrin {

/// A whole system in memory, on which scopes are enforced.
struct FakePlatform {
  FakePlatform() {
    securityScope.enforce();
    panels.grantPicked = [this](const FileURL& picked) {
      securityScope.grantByPanel(picked.path());
    };
    panels.savePanels.grantPlace = [this](const std::string& path) {
      securityScope.grantPlaceByPanel(path);
    };
    images.readFile = [this](const std::string& path) { return fileManager.contentsAtPath(path); };
    bundle.information = {{"CFBundleDisplayName", "Tavrin"}};
    for (const char* sound : {"Volume Mount.aiff", "Funk.aiff", "empty trash.aiff"}) {
      bundle.resources[sound] = std::string("/opt/tavrin/share/tavrin/") + sound;
    }
  }

  FakeLog log;
  FakeMainLoop mainLoop;
  FakeApplication application;
  FakeBundle bundle;
  FakeCapabilities capabilities;
  FakeUserDefaultsProvider userDefaults;
  FakePropertyLists propertyLists;
  FakeFileManager fileManager;
  FakeSecurityScope securityScope{fileManager};
  FakePanels panels;
  FakeAlerts alerts;
  FakeSounds sounds;
  FakeStatusBar statusBar;
  FakeWorkspace workspace;
  FakeLaunchServices launchServices;
  FakeLoginItems loginItems;
  FakeDistributedNotifications distributedNotifications;
  FakePasteboards pasteboards;
  FakeUniformTypes uniformTypes;
  FakeServices services;
  FakeShell shell;
  FakeImages images;
  FakeExtensionController extensionController;

  Platform platform{log,
                    mainLoop,
                    application,
                    bundle,
                    capabilities,
                    userDefaults,
                    propertyLists,
                    fileManager,
                    securityScope,
                    panels,
                    alerts,
                    sounds,
                    statusBar,
                    workspace,
                    launchServices,
                    loginItems,
                    distributedNotifications,
                    pasteboards,
                    uniformTypes,
                    services,
                    shell,
                    images,
                    extensionController};
};

}  // namespace tavrin
