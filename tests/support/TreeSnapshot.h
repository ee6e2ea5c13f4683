#pragma once

#include <map>
#include <string>

namespace tavrin::testing {

/// What stands below a path, item by item: path relative to it ("" is itself) to one line with
/// type, mode, owner, size, modification time, attributes, link target, contents, and which items
/// are one file under several names. Two trees with equal snapshots are equal but for access times.
using TreeSnapshot = std::map<std::string, std::string>;

/// Takes a snapshot; empty when nothing stands at the path. Any depth and any name are fine.
TreeSnapshot snapshotOf(const std::string& path);

/// The names in a folder.
std::map<std::string, int> namesIn(const std::string& path);

/// What `rsync --dry-run` would change to make the second folder like the first, with owners,
/// access control lists, attributes, hard links and contents; "" when they are the same.
std::string differencesByRsync(const std::string& first, const std::string& second);

}  // namespace tavrin::testing
