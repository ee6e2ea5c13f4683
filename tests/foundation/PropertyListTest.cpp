#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "foundation/PropertyList.h"

namespace tavrin {
namespace {

constexpr auto most = std::numeric_limits<std::int64_t>::max();
constexpr auto least = std::numeric_limits<std::int64_t>::min();

TEST(PropertyList, ReadsBooleansAsThePlatformDoes) {
  for (const PropertyList& on : std::vector<PropertyList>{true, 1, -3, 0.5, "1", "YES", "y", "true",
                                                          "T", "  +007", "-1", "9 lives"}) {
    EXPECT_TRUE(on.boolValue()) << on.integerValue();
  }
  for (const PropertyList& off : std::vector<PropertyList>{
           false, 0, 0.0, "", "0", "NO", "off", "x1", "+-1", "000", PropertyList::Array{1},
           PropertyList::Dictionary{{"a", 1}}, PropertyList::Data{1}}) {
    EXPECT_FALSE(off.boolValue());
  }
}

TEST(PropertyList, CopiesShareTheirDataAndCompareItsBytes) {
  const PropertyList list = PropertyList::Array{PropertyList::Data{1, 2, 3}, "text"};
  const PropertyList copy = list;
  const PropertyList& data = list.arrayIfArray()->front();
  EXPECT_EQ(copy.arrayIfArray()->front().dataIfData(), data.dataIfData());
  EXPECT_EQ(data.sharedDataIfData().get(), data.dataIfData());
  EXPECT_EQ(data, PropertyList(PropertyList::Data{1, 2, 3}));
  EXPECT_FALSE(data == PropertyList(PropertyList::Data{1, 2}));
  EXPECT_EQ(list.arrayIfArray()->back().sharedDataIfData(), nullptr);
  EXPECT_EQ(PropertyList(std::shared_ptr<const PropertyList::Data>()),
            PropertyList(PropertyList::Data()));
}

TEST(PropertyList, ReadsIntegersFromNumbersAndStrings) {
  const std::vector<std::pair<PropertyList, std::int64_t>> cases = {
      {7, 7},
      {true, 1},
      {2.9, 2},
      {-2.9, -2},
      {"12x", 12},
      {" \t-5", -5},
      {"+5", 5},
      {"+-5", 0},
      {"x", 0},
      {"", 0},
      {1e300, most},
      {-1e300, least},
      {std::nan(""), 0},
      {"99999999999999999999", most},
      {"-99999999999999999999", least},
      {PropertyList::Array{}, 0}};
  for (const auto& [value, expected] : cases) EXPECT_EQ(value.integerValue(), expected);
}

TEST(PropertyList, ReadsRealsFromNumbersAndStrings) {
  EXPECT_DOUBLE_EQ(PropertyList(3).doubleValue(), 3);
  EXPECT_DOUBLE_EQ(PropertyList(" -1.5e2m").doubleValue(), -150);
  EXPECT_DOUBLE_EQ(PropertyList("m").doubleValue(), 0);
}

TEST(PropertyList, FindsEntriesAndForgivesWrongKinds) {
  const PropertyList record(PropertyList::Dictionary{{"enable", "1"}, {"name", 4}});
  EXPECT_TRUE(record.boolForKey("enable"));
  EXPECT_FALSE(record.boolForKey("absent"));
  EXPECT_EQ(record.stringForKey("enable"), "1");
  EXPECT_EQ(record.stringForKey("name"), "");
  EXPECT_EQ(PropertyList(5).find("enable"), nullptr);
}

TEST(PropertyList, TellsKindsApartWhenComparing) {
  EXPECT_NE(PropertyList(true), PropertyList(1));
  EXPECT_NE(PropertyList(1), PropertyList("1"));
  EXPECT_EQ(PropertyList(PropertyList::Array{1, "a"}), PropertyList(PropertyList::Array{1, "a"}));
}

TEST(PropertyList, ListsKeysInByteOrderWithTheRootFirst) {
  const PropertyList::Dictionary bookmarks = {{"/home", 1}, {"/", 1}, {"/a", 1}};
  EXPECT_EQ(bookmarks.begin()->first, "/");
}

TEST(PropertyList, ShowsAMissingString) {
  EXPECT_EQ(descriptionOf(std::nullopt), "(null)");
  EXPECT_EQ(descriptionOf("a"), "a");
}

}  // namespace
}  // namespace tavrin
