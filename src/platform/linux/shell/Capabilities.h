#pragma once

namespace tavrin::shell {

/// Gives up, for this process and what it runs, every privilege but those that let root work on
/// anybody's files. Without privileges there is nothing to give up. Returns 0, or the errno value
/// of why it cannot.
int giveUpPrivileges();

}  // namespace tavrin::shell
