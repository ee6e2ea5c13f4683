#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace tavrin {

/// Starts a program, whose absolute path is the first of `words`, with this process's environment
/// and the variables of `environment` besides. It reads and prints nothing; its errors go where
/// this process's go. `finished` is called in the thread-default main context once it has ended:
/// true for the exit status 0, false for any other, and for a program that cannot be started.
void runHelperProgram(const std::vector<std::string>& words,
                      const std::map<std::string, std::string>& environment,
                      std::function<void(bool succeeded)> finished);

}  // namespace tavrin
