#pragma once

#include "platform/FileManager.h"
#include "platform/LaunchServices.h"
#include "platform/Log.h"
#include "platform/Pasteboard.h"
#include "platform/Services.h"

namespace tavrin {

/// What the services of terminals ask of an operating system: a program that does nothing else
/// needs no more of a platform.
struct TerminalPlatform {
  FileManager& fileManager;
  LaunchServices& launchServices;
  PasteboardProvider& pasteboards;
  Services& services;
  Log& log;
};

}  // namespace tavrin
