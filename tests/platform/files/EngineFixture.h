#pragma once

#include <gtest/gtest.h>

#include <string>

#include "platform/linux/FileOperation.h"
#include "platform/linux/PartialItems.h"
#include "platform/linux/TreeCopy.h"
#include "platform/linux/TreeMove.h"
#include "platform/linux/TreeRemoval.h"
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

  // Of operations that nobody watches.
  static Status copyItem(const ItemReference& source, const ItemReference& destination,
                         PartialItems& partials) {
    FileOperation operation;
    return tavrin::copyItem(source, destination, partials, operation);
  }
  static Status copyFileReplacing(const ItemReference& source, const ItemReference& destination,
                                  PartialItems& partials) {
    FileOperation operation;
    return tavrin::copyFileReplacing(source, destination, partials, operation);
  }
  static Status moveItem(const ItemReference& source, const ItemReference& destination,
                         PartialItems& partials) {
    FileOperation operation;
    return tavrin::moveItem(source, destination, partials, operation);
  }
  static Status removeItem(const ItemReference& item) {
    FileOperation operation;
    return tavrin::removeItem(item, operation);
  }
  static Status removeCopiedItem(const ItemReference& source, const ItemReference& copy,
                                 TimeGranularity granularity) {
    FileOperation operation;
    return tavrin::removeCopiedItem(source, copy, granularity, operation);
  }

  bool hasNoRecords() const { return namesIn(records.path()).empty(); }

  ScratchFolder scratch;
  ScratchFolder records;
  PartialItems partials{records.path()};
  FileOperation clearing;
};

/// A second file system for moves across: in memory, where every Linux has one.
constexpr const char* otherFileSystem = "/dev/shm";

inline std::errc causeOf(const Status& status) {
  return status ? std::errc{} : static_cast<std::errc>(status.error().code.value());
}

}  // namespace tavrin::testing
