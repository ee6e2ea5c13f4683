#include <gtest/gtest.h>

#include "foundation/ActionNames.h"
#include "foundation/FileURL.h"
#include "menu/ActionArguments.h"

namespace tavrin {

namespace {

PropertyList::Dictionary itemsOf(const char* action, const std::vector<std::string>& paths) {
  const auto items = requestItems(*argumentsOfAction(action), paths);
  EXPECT_TRUE(items) << action;
  return items ? items.value() : PropertyList::Dictionary();
}

TEST(ActionArguments, everyActionHasOnePlaceForItsItems) {
  for (const char* action : action_name::all) {
    const auto arguments = argumentsOfAction(action);
    ASSERT_TRUE(arguments) << action;
    EXPECT_STREQ(arguments->action, action);
    EXPECT_TRUE(itemsOf(action, {}).empty());
    EXPECT_EQ(itemsOf(action, {"/a/b"}).count(arguments->key), 1U);
  }
  EXPECT_FALSE(argumentsOfAction("unhiddenSelectedFiles"));
  EXPECT_FALSE(argumentsOfAction(""));
}

TEST(ActionArguments, itemsStandUnderTheKeysThatTheHandlersRead) {
  using Entries = PropertyList::Dictionary;
  const std::string list = "file:///a%20b|file:///%FF%0A%25";
  EXPECT_EQ(itemsOf("copyFilesTo", {"/a b", "/\xff\n%"}), Entries({{"SelectedFilesUrl", list}}));
  EXPECT_EQ(itemsOf("pasteSelectedFiles", {"/a b", "/\xff\n%"}),
            Entries({{"CuttingFilesURL", list}}));
  EXPECT_EQ(itemsOf("customIcon", {"/a b|c"}), Entries({{"SelectedFile", "/a b|c"}}));
  EXPECT_EQ(itemsOf("openInIDEA", {"/a b"}), Entries({{"Path", "/a b"}}));
  EXPECT_EQ(itemsOf("imageToIconSetForMac", {"/a b"}), Entries({{"File", "/a b"}}));
  EXPECT_EQ(itemsOf("openFileInEmacs", {"/a/b c"}), Entries({{"File", "/a/b c"}, {"Path", "/a"}}));
  EXPECT_EQ(itemsOf("openFileInEmacs", {"/a"}), Entries({{"File", "/a"}, {"Path", "/"}}));
}

TEST(ActionArguments, refusesWhatARequestCannotCarry) {
  const auto two = requestItems(*argumentsOfAction("customIcon"), {"/a", "/b"});
  ASSERT_FALSE(two);
  EXPECT_EQ(two.error().code, std::errc::argument_list_too_long);
  const auto parted = requestItems(*argumentsOfAction("copyFilesTo"), {"/a", "/b|c", "/d"});
  ASSERT_FALSE(parted);
  EXPECT_EQ(parted.error().code, std::errc::invalid_argument);
  EXPECT_EQ(parted.error().path, "/b|c");
}

}  // namespace

}  // namespace tavrin
