#include <gtest/gtest.h>

#include <string>

#include "platform/linux/DirectoryFile.h"

namespace tavrin {
namespace {

struct Case {
  const char* description;
  std::string before;
  std::string withIcon;
  std::string withoutIcon;
};

const Case cases[] = {
    {"no file", "", "[Desktop Entry]\nIcon=/i.png\n", ""},
    {"an icon alone", "[Desktop Entry]\nIcon=old\n", "[Desktop Entry]\nIcon=/i.png\n", ""},
    {"other keys, comments and groups stay",
     "# mine\n\n[Desktop Entry]\n# "
     "name\nName=Photos\nIcon=old\nType=Directory\n\n[Dolphin]\nIcon=x\n",
     "# mine\n\n[Desktop Entry]\n# "
     "name\nName=Photos\nIcon=/i.png\nType=Directory\n\n[Dolphin]\nIcon=x\n",
     "# mine\n\n[Desktop Entry]\n# name\nName=Photos\nType=Directory\n\n[Dolphin]\nIcon=x\n"},
    {"a group without an icon", "[Desktop Entry]\nName=A\n",
     "[Desktop Entry]\nIcon=/i.png\nName=A\n", "[Desktop Entry]\nName=A\n"},
    {"no such group", "[Dolphin]\nSortOrder=1\n",
     "[Dolphin]\nSortOrder=1\n[Desktop Entry]\nIcon=/i.png\n", "[Dolphin]\nSortOrder=1\n"},
    {"no line break at the end", "[Dolphin]\nSortOrder=1",
     "[Dolphin]\nSortOrder=1\n[Desktop Entry]\nIcon=/i.png\n", "[Dolphin]\nSortOrder=1"},
    {"a head without a line break", "[Desktop Entry]", "[Desktop Entry]\nIcon=/i.png\n",
     "[Desktop Entry]"},
    {"an icon without a line break", "[Desktop Entry]\nName=A\nIcon=old",
     "[Desktop Entry]\nName=A\nIcon=/i.png\n", "[Desktop Entry]\nName=A\n"},
    {"lines of another system", "[Desktop Entry]\r\nName=A\r\nIcon=old\r\n",
     "[Desktop Entry]\r\nName=A\r\nIcon=/i.png\r\n", "[Desktop Entry]\r\nName=A\r\n"},
    {"a last line of another system that is cut off", "[X]\r",
     "[X]\r\n[Desktop Entry]\r\nIcon=/i.png\r\n", "[X]\r"},
    {"a byte order mark that begins no file", "[Desktop Entry]\n\xEF\xBB\xBFIcon=keep\n",
     "[Desktop Entry]\nIcon=/i.png\n\xEF\xBB\xBFIcon=keep\n",
     "[Desktop Entry]\n\xEF\xBB\xBFIcon=keep\n"},
    {"blanks, translations and second groups",
     "\xEF\xBB\xBF [Desktop Entry] \n Icon = old\nIcon[de]=alt\n[X]\n[Desktop "
     "Entry]\nIcon=last\nIconic=1\n",
     "\xEF\xBB\xBF [Desktop Entry] \nIcon=/i.png\n[X]\n[Desktop Entry]\nIconic=1\n",
     "\xEF\xBB\xBF [Desktop Entry] \n[X]\n[Desktop Entry]\nIconic=1\n"},
    {"comments and bytes that are no text", "[Desktop Entry]\n#Icon=no\n\xff\xfe\n=\nname\n",
     "[Desktop Entry]\nIcon=/i.png\n#Icon=no\n\xff\xfe\n=\nname\n",
     "[Desktop Entry]\n#Icon=no\n\xff\xfe\n=\nname\n"},
};

TEST(DirectoryFile, changesTheIconAndNothingElse) {
  for (const Case& each : cases) {
    EXPECT_EQ(directoryFileWithIcon(each.before, "/i.png"), each.withIcon) << each.description;
    EXPECT_EQ(directoryFileWithoutIcon(each.before), each.withoutIcon) << each.description;
    EXPECT_EQ(directoryFileWithIcon(each.withIcon, "/i.png"), each.withIcon) << each.description;
  }
}

TEST(DirectoryFile, writesAPathOfAnyBytesInOneLine) {
  EXPECT_EQ(directoryFileWithIcon("", "/a b\\c\nd\te\rf\xff=#"),
            "[Desktop Entry]\nIcon=/a b\\\\c\\nd\\te\\rf\xff=#\n");
}

}  // namespace
}  // namespace tavrin
