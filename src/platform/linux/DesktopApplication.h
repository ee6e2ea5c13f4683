#pragma once

#include <gio/gdesktopappinfo.h>

#include <string>

#include "foundation/Result.h"
#include "platform/linux/GLibPointers.h"

namespace tavrin {

/// Starts an installed application with the item at `path`, absolute, of any bytes. The field codes
/// get the path, %u and %U of an entry with X-GIO-NoFuse an escaped URI. The program runs in a
/// session of its own, is no child of this process, inherits no handle but standard error, reads
/// nothing and writes nothing to standard output. Fails when there is no such item or the program
/// cannot be started; how a D-Bus activation ends is not waited for.
Status launchWithFile(GDesktopAppInfo* application, const std::string& path);

/// The same with a URI, which needs to lead nowhere.
Status launchWithUri(GDesktopAppInfo* application, const std::string& uri);

}  // namespace tavrin
