#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Result.h"

namespace tavrin {

/// The variables of the environment that tell of this process' own start and of no other's.
inline constexpr std::array<const char*, 4> variablesOfOwnStart = {
    "DESKTOP_STARTUP_ID", "XDG_ACTIVATION_TOKEN", "DBUS_STARTER_ADDRESS", "DBUS_STARTER_BUS_TYPE"};

/// Those of them that hold a token, which a process that starts nothing else may hand on.
inline constexpr std::array<std::string_view, 2> variablesOfStartupToken = {"DESKTOP_STARTUP_ID",
                                                                            "XDG_ACTIVATION_TOKEN"};

/// What a started program gets of how this process was started: the token by which the desktop lets
/// its window come to the front.
enum class StartupToken { Withhold, HandOn };

/// Starts a program, an absolute path, in a session of its own: it outlives this process, is no
/// child of it, reads and writes nothing (standard input and output are /dev/null) and starts in
/// `workingFolder`, an absolute path that it finds in its variable PWD as it is written. Standard
/// error stays the log's. Fails when the folder cannot be entered or the program not be executed.
/// May be called on any thread.
Status launchProgram(const std::string& path, const std::vector<std::string>& arguments = {},
                     const std::string& workingFolder = "/",
                     StartupToken startupToken = StartupToken::Withhold);

}  // namespace tavrin
