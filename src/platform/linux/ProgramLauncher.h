#pragma once

#include <string>
#include <vector>

#include "foundation/Result.h"

namespace tavrin {

/// Starts a program, an absolute path, in a session of its own: it outlives this process, is no
/// child of it, reads and writes nothing (standard input and output are /dev/null) and starts in
/// "/". Standard error stays the log's. Fails when the program cannot be executed. May be called on
/// any thread.
Status launchProgram(const std::string& path, const std::vector<std::string>& arguments = {});

}  // namespace tavrin
