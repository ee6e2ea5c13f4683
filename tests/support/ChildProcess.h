#pragma once

#include <sys/types.h>

#include <functional>

namespace tavrin::testing {

/// Runs `body` in a process of its own and returns what it returned (0 to 200), or -1.
int inChildProcess(const std::function<int()>& body);

/// The same as another user, the one without any rights; needs the rights to become one.
int asNobody(const std::function<int()>& body);

/// The same with a system call that fails with `cause` whenever it is used.
int withoutSystemCall(int number, int cause, const std::function<int()>& body);

/// Starts `body` in a process of its own and kills it with SIGKILL after `microseconds`.
void killAfter(unsigned microseconds, const std::function<void()>& body);

}  // namespace tavrin::testing
