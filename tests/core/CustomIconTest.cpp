#include <gmock/gmock.h>

#include <limits>
#include <string>
#include <vector>

#include "tests/core/HostFixture.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* item = "/home/ada/in/folder";

PropertyList::Data bytes(const std::string& text) {
  return {text.begin(), text.end()};
}

PropertyList entry(const std::string& icon, bool enabled) {
  return PropertyList::Dictionary{{"enable", enabled}, {"icon", bytes(icon)}};
}

class CustomIcon : public HostFixture {
 protected:
  void SetUp() override {
    system_.fileManager.addFolder(item);
    standard_->setObject(
        PropertyList::Array{entry("image first", true), entry("image second", false),
                            entry("image third", true)},
        settings_key::arrOfCustomIcon);
    launch();
  }

  void setIcon(const PropertyList& tag) {
    serve({{"Action", "customIcon"}, {"SelectedFile", item}, {"Tag", tag}});
  }

  /// The images that were set, in order; each must be the item's.
  std::vector<std::string> images() {
    std::vector<std::string> images;
    for (const auto& set : system_.workspace.icons) {
      EXPECT_EQ(set.path, item);
      images.push_back(set.image);
    }
    system_.workspace.icons.clear();
    return images;
  }
};

TEST_F(CustomIcon, RemovesTheOldIconAndAfterAPauseSetsTheOneInTheList) {
  grant("/home/ada/in");
  setIcon(2);
  ASSERT_EQ(system_.workspace.icons.size(), 2U);
  const auto pause = system_.workspace.icons[1].time - system_.workspace.icons[0].time;
  EXPECT_GE(pause, std::chrono::milliseconds(10));
  EXPECT_THAT(images(), ElementsAre("none", "second"));
  EXPECT_THAT(system_.sounds.played, IsEmpty());
  EXPECT_THAT(system_.log.lines(), IsEmpty());
}

TEST_F(CustomIcon, ReadsTagsOfAllKindsAndStopsBelowOne) {
  grant("/home/ada/in");
  const std::int64_t least = std::numeric_limits<std::int64_t>::min();
  for (const PropertyList& tag : {PropertyList(0), PropertyList(-1), PropertyList(least),
                                  PropertyList("x"), PropertyList("")}) {
    setIcon(tag);
    EXPECT_THAT(images(), ElementsAre("none"));
  }
  serve({{"Action", "customIcon"}, {"SelectedFile", item}});
  EXPECT_THAT(images(), ElementsAre("none"));
  EXPECT_THAT(system_.log.lines(), IsEmpty());
  setIcon(" 3rd");
  setIcon(1.9);
  EXPECT_THAT(images(), ElementsAre("none", "third", "none", "first"));
}

TEST_F(CustomIcon, EndsBehindTheListWithTheOldIconRemoved) {
  grant("/home/ada/in");
  for (const std::int64_t tag : {std::int64_t{4}, std::numeric_limits<std::int64_t>::max()}) {
    setIcon(tag);
    EXPECT_THAT(images(), ElementsAre("none"));
  }
  EXPECT_THAT(system_.log.lines(), ElementsAre(HasSubstr("customIcon: there is no icon 4"),
                                               HasSubstr("there is no icon 9223372036854775807")));
  standard_->setObject("no list", settings_key::arrOfCustomIcon);
  setIcon(1);
  EXPECT_THAT(images(), ElementsAre("none"));
}

TEST_F(CustomIcon, AnEntryWithoutAnImageRemovesTheIconAgain) {
  grant("/home/ada/in");
  standard_->setObject(
      PropertyList::Array{entry("no picture", true), PropertyList::Dictionary{}, "no entry",
                          PropertyList::Dictionary{{"icon", "image of text"}}},
      settings_key::arrOfCustomIcon);
  for (int tag = 1; tag <= 4; ++tag) {
    setIcon(tag);
    EXPECT_THAT(images(), ElementsAre("none", "none")) << tag;
  }
}

TEST_F(CustomIcon, UsesTheListAsItIsWhenTheRequestArrives) {
  grant("/home/ada/in");
  standard_->setObject(PropertyList::Array{entry("image edited", true)},
                       settings_key::arrOfCustomIcon);
  setIcon(1);
  EXPECT_THAT(images(), ElementsAre("none", "edited"));
}

TEST_F(CustomIcon, AsksForTheParentFolderAndChangesNothingWhenRefused) {
  setIcon(1);
  EXPECT_THAT(images(), IsEmpty());
  ASSERT_EQ(system_.panels.shown.size(), 1U);
  EXPECT_EQ(system_.panels.shown[0].directory->path(), "/home/ada/in");
}

TEST_F(CustomIcon, NeedsAnItemAtAFullPath) {
  serve({{"Action", "customIcon"}, {"Tag", 1}});
  for (const char* path : {"", "folder", "~/folder"}) {
    serve({{"Action", "customIcon"}, {"SelectedFile", path}, {"Tag", 1}});
  }
  EXPECT_EQ(system_.log.lines(),
            std::vector<std::string>(4, "customIcon: no item at a full path given"));
  EXPECT_THAT(system_.panels.shown, IsEmpty());
  EXPECT_THAT(images(), IsEmpty());
}

}  // namespace
}  // namespace tavrin
