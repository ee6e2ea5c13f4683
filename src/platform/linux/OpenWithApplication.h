#pragma once

#include <string>

#include "platform/Log.h"
#include "platform/linux/ApplicationTable.h"

namespace tavrin {

/// Opens the item at `path`, an absolute path of any bytes, in the application of the given name:
/// an installed desktop entry that `table` has for the name or else one whose own Name, or window
/// class, it is. An entry whose program or TryExec is not there is not installed. The application
/// is started as its entry says (Desktop Entry specification of freedesktop.org), or by D-Bus where
/// the entry is DBusActivatable; it is no child of this process and inherits none of its handles.
/// True when it was started. Of an application that is not installed nothing is told; any other
/// failure reaches the log.
bool openFileWithApplication(const std::string& path, const std::string& applicationName,
                             ApplicationTable& table, Log& log);

}  // namespace tavrin
