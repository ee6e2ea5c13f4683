#pragma once

#include <string>

#include "foundation/PathHelpers.h"

namespace tavrin {

/// The folders of the XDG base directory specification, absolute and without trailing separator. A
/// variable that is unset, empty or relative gives the default below the account's home.
std::string userConfigDirectory();
std::string userDataDirectory();
std::string userCacheDirectory();

/// $XDG_RUNTIME_DIR; "" when it is not set.
std::string userRuntimeDirectory();

/// The account of the process from the password database. An account that is not there has its user
/// number as its name and the environment's home folder.
Account currentAccount();

/// The folder of the running program, links resolved.
std::string programDirectory();

}  // namespace tavrin
