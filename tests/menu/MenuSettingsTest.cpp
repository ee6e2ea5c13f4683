#include <gmock/gmock.h>

#include "menu/MenuTitle.h"
#include "tests/menu/MenuFixture.h"

namespace tavrin {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class MenuSettingsTest : public MenuFixture {};

TEST_F(MenuSettingsTest, NothingIsAnEmptyMenu) {
  EXPECT_THAT(folderMenu(), IsEmpty());
  EXPECT_THAT(itemsMenu({{"file:///a"}}), IsEmpty());
}

TEST_F(MenuSettingsTest, ValuesOfOtherTypesReadAsEmptyOrOff) {
  const PropertyList values[] = {7,
                                 "text",
                                 PropertyList::Data{1},
                                 Rows{1, "x", Rows{}, Row{}},
                                 Row{{"enable", 1}},
                                 Rows{Row{{"enable", 1}, {"realPath", Rows{}}}}};
  for (const PropertyList& value : values) {
    for (const char* key : menuSettingsKeys) suite.insert_or_assign(key, value);
    EXPECT_THAT(titles(folderMenu()), IsEmpty());
    EXPECT_THAT(titles(itemsMenu({{"file:///a"}})),
                testing::AnyOf(IsEmpty(), ElementsAre("*Copy to Folder/*Choose Folder…",
                                                      "*Move to Folder/*Choose Folder…")));
  }
}

TEST_F(MenuSettingsTest, NewFilesCountEnabledRowsAndMainOnesNeedNoSubmenu) {
  Row off = fileRow("Off", "off");
  off.insert_or_assign("enable", 0);
  Row mine = fileRow("Mine", "mine");
  mine.insert_or_assign("modified", "1");
  set("arrOfCreateNewFile", Rows{fileRow("Text", "txt", 1), off, mine, fileRow("Other", "")});
  const Menu menu = folderMenu();
  EXPECT_THAT(titles(menu), ElementsAre("*Text", "*New File/Mine", "*New File/*Other"));
  EXPECT_EQ(requestOf(find(menu, "Mine")), PropertyList(Row{{"Action", "createNewFile"},
                                                            {"Path", "/home/ann/in view"},
                                                            {"Tag", std::int64_t{1}}}));
  EXPECT_EQ(find(menu, "*Other").keys.at("Tag"), PropertyList(std::int64_t{2}));
}

TEST_F(MenuSettingsTest, WithoutNamesOfItsOwnANewFileIsAskedFor) {
  set("disableAutoNameOfCreateNewFile", true);
  set("arrOfCreateNewFile", Rows{fileRow("Text", "txt", 1), fileRow("Page", "html")});
  EXPECT_THAT(titles(folderMenu()), ElementsAre("*Text", "*New File/*Page"));
  set("arrOfCreateNewFile", Rows{fileRow("Text", "txt", 1), fileRow("Other", "")});
  const Menu menu = folderMenu();
  EXPECT_THAT(titles(menu), ElementsAre("*New File…"));
  EXPECT_EQ(menu.front().keys.at("Tag"), PropertyList(std::int64_t{1}));
}

TEST_F(MenuSettingsTest, FoldersHaveTheirNamesAndSwitches) {
  Row off = folderRow("/off");
  off.insert_or_assign("enable", "0");
  set("arrOfCopyFilesTo", Rows{folderRow("~/Downloads"), folderRow("/data/my%20set"), off,
                               folderRow("Undefined"), folderRow("/x", "Mine")});
  set("arrOfCommonPath", Rows{folderRow("~")});
  EXPECT_THAT(itemsMenu({{"file:///a"}}), IsEmpty());
  set("enableCopyFilesTo", "YES");
  EXPECT_THAT(titles(itemsMenu({{"file:///a"}})),
              ElementsAre("*Copy to Folder/*Downloads", "*Copy to Folder/my%20set",
                          "*Copy to Folder/Mine", "*Copy to Folder/*Choose Folder…"));
  EXPECT_THAT(folderMenu(), IsEmpty());
  set("enableCommonPath", 1);
  const Menu menu = folderMenu();
  EXPECT_THAT(menu, SizeIs(1));
  EXPECT_EQ(requestOf(menu.front().submenu.front()),
            PropertyList(Row{{"Action", "openCommonPath"}, {"Path", "~"}}));
}

TEST_F(MenuSettingsTest, IconsAreToldByTheirPlacesInTheWholeList) {
  Row off = iconRow("Off");
  off.insert_or_assign("enable", 0);
  set("arrOfCustomIcon", Rows{iconRow("Blue"), off, iconRow("Red")});
  EXPECT_EQ(find(itemsMenu({{"file:///a"}}), "*Red").keys.at("Tag"), PropertyList(std::int64_t{3}));
  set("positionsOfCustomIcon", Rows{2, 5, "9"});
  const Menu menu = itemsMenu({{"file:///a"}});
  EXPECT_THAT(titles(menu),
              ElementsAre("*Set Icon/*Blue", "*Set Icon/*Red", "*Set Icon/*Remove Icon"));
  EXPECT_EQ(requestOf(find(menu, "*Red"), {"/a"}),
            PropertyList(Row{{"Action", "customIcon"}, {"SelectedFile", "/a"}, {"Tag", 9}}));
  EXPECT_EQ(find(menu, "*Remove Icon").keys.at("Tag"), PropertyList(std::int64_t{0}));
  set("positionsOfCustomIcon", Rows{0, 0, -1});
  EXPECT_THAT(itemsMenu({{"file:///a"}}), IsEmpty()) << "they would take icons away";
}

TEST_F(MenuSettingsTest, ImagesFollowTheirSwitches) {
  set("enableCopyFilesTo", true);
  set("arrOfCreateNewFile", Rows{fileRow("Text", "txt", 1), fileRow("Way out", "../../x", 1)});
  set("arrOfCopyFilesTo", Rows{folderRow("/x")});
  set("arrOfCustomIcon", Rows{iconRow("Blue")});
  set("arrOfOthers", Rows{commandRow("Cut")});
  const auto icons = [this] {
    std::vector<std::string> all;
    Menu menu = folderMenu();
    for (const Menu& more : {itemsMenu({{"file:///a"}})})
      menu.insert(menu.end(), more.begin(), more.end());
    for (const MenuItem& item : menu) {
      if (!item.icon.empty()) all.push_back(item.icon);
      for (const MenuItem& inner : item.submenu) {
        if (!inner.icon.empty()) all.push_back(inner.icon);
      }
    }
    return all;
  };
  EXPECT_THAT(icons(), IsEmpty());
  for (const char* key : {"enableIconOfCreateNewFile", "enableIconOfSendFilesTo",
                          "enableIconOfCustomIcon", "enableIconOfOthers"}) {
    set(key, true);
  }
  EXPECT_THAT(icons(), ElementsAre("/container/Templates/CreateNewFile/txt.png", "text-x-generic",
                                   "/container/Templates/FunctionIcon/copyFilesTo.png", "folder",
                                   "/container/Templates/FunctionIcon/customIcon.png", "/icons/1",
                                   "product", "/container/Templates/OthersMenuItemIcon/Cut.png"));
}

TEST_F(MenuSettingsTest, AnImageThatIsNotThereHasAnother) {
  set("enableIconOfOthers", true);
  set("enableIconOfCreateNewFile", true);
  set("arrOfOthers", Rows{commandRow("Cut"), commandRow("Pin by Snapvane")});
  set("arrOfCreateNewFile", Rows{fileRow("Text", "txt", 1), fileRow("Mine", "mine", 1)});
  missing = {"/container/Templates/CreateNewFile/txt.png",
             "/container/Templates/CreateNewFile/mine.png", "/resources/mine.png",
             "/container/Templates/OthersMenuItemIcon/Snapvane.png"};
  const Menu folder = folderMenu();
  EXPECT_EQ(find(folder, "*Text").icon, "/resources/txt.png");
  EXPECT_EQ(find(folder, "*Mine").icon, "text-x-generic");
  const Menu items = itemsMenu({{"file:///a.png", false, "image/png"}});
  EXPECT_EQ(find(items, "*Pin by Snapvane").icon, "/resources/Snapvane.png");
}

TEST_F(MenuSettingsTest, ALongListIsCutOff) {
  set("enableCopyFilesTo", true);
  set("arrOfCopyFilesTo", Rows(5000, folderRow("/x")));
  set("arrOfCreateNewFile", Rows(5000, fileRow("Text", "txt")));
  set("arrOfCustomIcon", Rows(5000, iconRow("Blue")));
  set("arrOfOthers", Rows(5000, commandRow("Cut")));
  constexpr std::size_t most = MenuSettings::maximumRows;
  EXPECT_THAT(titles(folderMenu()), SizeIs(most));
  EXPECT_THAT(titles(itemsMenu({{"file:///a"}})), SizeIs(most + 1 + most + 1 + 1));
}

TEST(MenuTitle, IsOneShortLineOfValidText) {
  EXPECT_EQ(menuTitle("plain ü 漢"), "plain ü 漢");
  EXPECT_EQ(menuTitle("a\nb\tc\x7f"), "a b c ");
  EXPECT_EQ(menuTitle("a\xff\xc3"), "a\uFFFD\uFFFD");
  EXPECT_EQ(menuTitle(std::string(80, 'a')), std::string(80, 'a'));
  EXPECT_EQ(menuTitle(std::string(1'000'000, 'a')), std::string(79, 'a') + "…");
  EXPECT_EQ(menuTitle(""), "");
}

}  // namespace

}  // namespace tavrin
