#pragma once

#include "platform/Alert.h"
#include "platform/Application.h"
#include "platform/Bundle.h"
#include "platform/DistributedNotificationCenter.h"
#include "platform/ExtensionController.h"
#include "platform/FileManager.h"
#include "platform/Image.h"
#include "platform/LaunchServices.h"
#include "platform/Log.h"
#include "platform/LoginItems.h"
#include "platform/MainLoop.h"
#include "platform/OpenPanel.h"
#include "platform/Pasteboard.h"
#include "platform/PropertyListSerialization.h"
#include "platform/SavePanel.h"
#include "platform/SecurityScope.h"
#include "platform/Services.h"
#include "platform/Shell.h"
#include "platform/Sound.h"
#include "platform/StatusItem.h"
#include "platform/SystemCapabilities.h"
#include "platform/UniformTypes.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"

namespace tavrin {

/// All that Tavrin asks of an operating system, handed in at start. The services outlive whoever is
/// handed them.
struct Platform {
  Log& log;
  MainLoop& mainLoop;
  Application& application;
  Bundle& bundle;
  SystemCapabilities& capabilities;
  UserDefaultsProvider& userDefaults;
  PropertyListSerialization& propertyLists;
  FileManager& fileManager;
  SecurityScope& securityScope;
  PanelProvider& panels;
  AlertProvider& alerts;
  SoundProvider& sounds;
  StatusBar& statusBar;
  Workspace& workspace;
  LaunchServices& launchServices;
  LoginItems& loginItems;
  DistributedNotificationCenter& distributedNotifications;
  PasteboardProvider& pasteboards;
  UniformTypes& uniformTypes;
  Services& services;
  Shell& shell;
  ImageProvider& images;
  ExtensionController& extensionController;
};

}  // namespace tavrin
