#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/linux/PartialItems.h"
#include "tests/support/OpenItem.h"
#include "tests/support/ScratchFolder.h"
#include "tests/support/TreeBuilder.h"
#include "tests/support/TreeSnapshot.h"

namespace tavrin::testing {

/// A scratch folder for the items and one for the records of partial items.
class EngineFixture : public ::testing::Test {
 protected:
  std::string at(const std::string& name) const { return scratch / name; }
  OpenItem item(const std::string& name) const { return OpenItem(scratch / name); }
  TreeBuilder build() const { return TreeBuilder(scratch.path()); }

  bool hasNoRecords() const { return namesIn(records.path()).empty(); }

  ScratchFolder scratch;
  ScratchFolder records;
  PartialItems partials{records.path()};
};

/// A second file system for moves across: in memory, where every Linux has one.
constexpr const char* otherFileSystem = "/dev/shm";

inline std::errc causeOf(const Status& status) {
  return status ? std::errc{} : static_cast<std::errc>(status.error().code.value());
}

}  // namespace tavrin::testing
