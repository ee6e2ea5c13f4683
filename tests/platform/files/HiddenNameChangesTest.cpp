#include <gtest/gtest.h>

#include "platform/linux/HiddenNameChanges.h"

namespace tavrin {
namespace {

std::string hidden(std::string_view list, const std::vector<const char*>& names) {
  HiddenNameChanges changes;
  for (const char* name : names) changes.add(name, IsHidden::Yes);
  return changes.appliedTo(list);
}

TEST(HiddenNameChanges, aNameMayBeBlank) {
  EXPECT_EQ(hidden("", {" "}), " \n");
  EXPECT_EQ(hidden("\n", {"\r", "\t"}), "\n\r\n\t\n");
}

TEST(HiddenNameChanges, aListOfEmptyLinesHasNoName) {
  HiddenNameChanges changes;
  changes.add("a", IsHidden::No);
  EXPECT_EQ(changes.appliedTo("\na\n\n"), "");
  EXPECT_EQ(changes.appliedTo("\na\n\nb"), "\n\nb\n");
}

TEST(HiddenNameChanges, ofOneNameTheLastOneCounts) {
  HiddenNameChanges changes;
  for (const auto each : {IsHidden::Yes, IsHidden::No, IsHidden::Yes}) changes.add("a", each);
  changes.add("b", IsHidden::Yes);
  changes.add("b", IsHidden::No);
  EXPECT_EQ(changes.appliedTo("c\nb\nb\n"), "c\na\n");
  EXPECT_EQ(changes.appliedTo("a\na\n"), "a\na\n");
}

}  // namespace
}  // namespace tavrin
