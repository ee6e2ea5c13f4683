#pragma once

namespace tavrin::shell {

/// Takes from this process and its children the system calls by which a script could reach the
/// network, the session's services, other processes, or the modes, owners, times and attributes of
/// files, which no rule on files covers. They fail with EACCES. Returns 0, or the errno value of
/// why there is no filter.
int refuseOutsideCalls();

}  // namespace tavrin::shell
