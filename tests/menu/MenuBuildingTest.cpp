#include <gmock/gmock.h>

#include <set>

#include "foundation/ActionNames.h"
#include "tests/menu/MenuFixture.h"

namespace tavrin {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

constexpr const char* allCommands[] = {"Cut",
                                       "Paste",
                                       "Copy Path",
                                       "Open in Terminal",
                                       "Open in iTerm2",
                                       "Open in VSCode",
                                       "Open in IDEA",
                                       "Open in Sublime Text",
                                       "Open in Emacs",
                                       "Finder",
                                       "Hidden Selected Files",
                                       "Nohidden Selected Files",
                                       "Hidden All Files in Path",
                                       "Nohidden All Files in Path",
                                       "Delete directly",
                                       "Image to Icon for mac",
                                       "Image to Icon for iOS",
                                       "Pin by Snapvane",
                                       "Change to QR Code",
                                       "Translate by Google",
                                       "Translate by Baidu",
                                       "of another version"};

class MenuBuilding : public MenuFixture {
 protected:
  MenuBuilding() {
    set("enableCopyFilesTo", true);
    set("enableMoveFilesTo", true);
    set("enableCommonPath", true);
    set("arrOfCreateNewFile", Rows{fileRow("Text", "txt"), fileRow("Page", "html", 1)});
    set("arrOfCopyFilesTo", Rows{folderRow("~/Downloads")});
    set("arrOfCommonPath", Rows{folderRow("/data")});
    set("arrOfCustomIcon", Rows{iconRow("Blue")});
    set("filesUrlOfCutting", "file:///x/one|file:///x/two");
    Rows rows;
    for (const char* command : allCommands) rows.emplace_back(commandRow(command));
    set("arrOfOthers", rows);
  }

  /// The titles of the commands, without the name of their submenu.
  static std::vector<std::string> commands(const Menu& menu) {
    std::vector<std::string> all;
    for (const std::string& title : titles(menu)) {
      if (title.starts_with("*Tavrin/*")) all.push_back(title.substr(9));
    }
    return all;
  }
};

TEST_F(MenuBuilding, AFileGetsWhatWorksOnAFile) {
  const Menu menu = itemsMenu({{"file:///tmp/a%20b", false, "text/plain"}});
  EXPECT_THAT(commands(menu),
              ElementsAre("Cut", "Copy Path", "Open in VSCode", "Open in IDEA",
                          "Open in Sublime Text", "Open in Emacs", "Hidden Selected Files",
                          "Nohidden Selected Files", "Delete directly"));
  EXPECT_EQ(
      requestOf(find(menu, "*Open in Emacs"), {"/tmp/a b"}),
      PropertyList(Row{{"Action", "openFileInEmacs"}, {"File", "/tmp/a b"}, {"Path", "/tmp"}}));
  EXPECT_EQ(requestOf(find(menu, "*Downloads"), {"/tmp/a b"}),
            PropertyList(Row{{"Action", "copyFilesTo"},
                             {"SelectedFilesUrl", "file:///tmp/a%20b"},
                             {"ToPath", "~/Downloads"}}));
}

TEST_F(MenuBuilding, AnImageGetsIconSetsAndImagesArePinned) {
  const ListedItems::Item image{"file:///a.png", false, "image/png"};
  EXPECT_THAT(
      commands(itemsMenu({image})),
      testing::IsSupersetOf({"Image to Icon for mac", "Image to Icon for iOS", "Pin by Snapvane"}));
  const auto two = commands(itemsMenu({image, {"file:///b.jpg", false, "image/jpeg"}}));
  EXPECT_THAT(two, Contains("Pin by Snapvane"));
  EXPECT_THAT(two, Not(Contains("Image to Icon for mac")));
  EXPECT_THAT(commands(itemsMenu({image, {"file:///b", false, "text/plain"}})),
              Not(Contains("Pin by Snapvane")));
  EXPECT_EQ(requestOf(find(itemsMenu({image}), "*Image to Icon for iOS"), {"/a.png"}),
            PropertyList(Row{{"Action", "imageToIconSetForiOS"}, {"File", "/a.png"}}));
}

TEST_F(MenuBuilding, ASelectedFolderIsAlsoAPlaceToWorkIn) {
  const Menu menu = itemsMenu({{"file:///data/dir", true, "inode/directory"}});
  EXPECT_THAT(commands(menu),
              ElementsAre("Cut", "Paste", "Copy Path", "Open in Terminal", "Open in VSCode",
                          "Open in IDEA", "Open in Sublime Text", "Open in Emacs", "Finder",
                          "Hidden Selected Files", "Nohidden Selected Files", "Delete directly"));
  EXPECT_EQ(requestOf(find(menu, "*Open in IDEA")),
            PropertyList(Row{{"Action", "openInIDEA"}, {"Path", "/data/dir"}}));
  EXPECT_EQ(requestOf(find(menu, "*Paste")),
            PropertyList(Row{{"Action", "pasteSelectedFiles"},
                             {"CuttingFilesURL", "file:///x/one|file:///x/two"},
                             {"PasteInPath", "/data/dir"}}));
  EXPECT_EQ(find(menu, "*Copy Path").subject, MenuItem::Subject::Items);
}

TEST_F(MenuBuilding, TheBackgroundGetsWhatWorksInTheFolder) {
  const Menu menu = folderMenu();
  EXPECT_THAT(
      titles(menu),
      ElementsAre("*Page", "*New File/*Text", "*Common Folders/data", "*Tavrin/*Paste",
                  "*Tavrin/*Copy Path", "*Tavrin/*Open in Terminal", "*Tavrin/*Open in VSCode",
                  "*Tavrin/*Open in IDEA", "*Tavrin/*Open in Sublime Text",
                  "*Tavrin/*Open in Emacs", "*Tavrin/*Finder", "*Tavrin/*Hidden All Files in Path",
                  "*Tavrin/*Nohidden All Files in Path"));
  EXPECT_EQ(requestOf(find(menu, "*Nohidden All Files in Path")),
            PropertyList(Row{{"Action", "unhiddenAllFilesInPath"}, {"Path", "/home/ann/in view"}}));
  EXPECT_EQ(find(menu, "*Open in Terminal").keys,
            (Row{{"Path", "/home/ann/in view"}, {"terminalService", "com.apple.terminal.tab"}}));
  set("enableOpenInTerminalWithWindow", true);
  EXPECT_EQ(find(folderMenu(), "*Open in Terminal").keys.at("terminalService"),
            PropertyList("com.apple.terminal.window"));
  suite.erase("filesUrlOfCutting");
  EXPECT_THAT(titles(folderMenu()), Not(Contains("*Tavrin/*Paste")));
}

TEST_F(MenuBuilding, TheSecondTerminalIsOfferedWhereItIs) {
  EXPECT_THAT(commands(folderMenu()), Not(Contains("Open in iTerm2")));
  environment.hasSecondTerminal = true;
  EXPECT_EQ(find(folderMenu(), "*Open in iTerm2").keys.at("terminalService"),
            PropertyList("com.googlecode.iterm2.tab"));
}

TEST_F(MenuBuilding, AFolderOfEitherMenuHasBoth) {
  const Menu menu = eitherMenu("file:///data/dir");
  EXPECT_THAT(titles(menu),
              testing::IsSupersetOf({"*Page", "*New File/*Text", "*Copy to Folder/*Downloads",
                                     "*Set Icon/*Blue", "*Common Folders/data", "*Tavrin/*Cut",
                                     "*Tavrin/*Paste", "*Tavrin/*Hidden All Files in Path",
                                     "*Tavrin/*Delete directly"}));
  const auto all = titles(menu);
  EXPECT_EQ(std::set<std::string>(all.begin(), all.end()).size(), all.size());
  EXPECT_EQ(find(menu, "*Text").keys.at("Path"), PropertyList("/data/dir"));
}

TEST_F(MenuBuilding, OnlyFilesOfThisSystemAreOffered) {
  for (const char* uri : {"sftp://host/a", "trash:///a", "file://host/a", "file:///%zz", "file:/a",
                          "", "recent:///a", "file:///a%00b"}) {
    EXPECT_THAT(itemsMenu({{uri}}), IsEmpty()) << uri;
    EXPECT_THAT(eitherMenu(uri), IsEmpty()) << uri;
    EXPECT_THAT(titles(folderMenu(uri)), ElementsAre("*Common Folders/data")) << uri;
  }
  EXPECT_THAT(itemsMenu({{"file:///a"}, {"sftp://host/a"}}), IsEmpty());
  EXPECT_THAT(itemsMenu({}), IsEmpty());
}

TEST_F(MenuBuilding, ANameThatPartsListsGetsWhatNeedsNone) {
  for (const char* uri : {"file:///a%7Cb.png", "file:///a%7cb.png"}) {
    EXPECT_THAT(titles(itemsMenu({{uri, false, "image/png"}})),
                ElementsAre("*Set Icon/*Blue", "*Set Icon/*Remove Icon", "*Tavrin/*Copy Path",
                            "*Tavrin/*Open in VSCode", "*Tavrin/*Open in IDEA",
                            "*Tavrin/*Open in Sublime Text", "*Tavrin/*Open in Emacs",
                            "*Tavrin/*Image to Icon for mac", "*Tavrin/*Image to Icon for iOS"));
  }
  EXPECT_THAT(commands(itemsMenu({{"file:///a"}, {"file:///b%7C"}})),
              Not(Contains("Delete directly")));
}

TEST_F(MenuBuilding, AFewItemsOfOneKindGetARequestEach) {
  const Menu files = itemsMenu({{"file:///a"}, {"file:///b"}});
  const auto requests = requestsOfItem(find(files, "*Open in Emacs"), {"/a", "/d/b"});
  ASSERT_TRUE(requests);
  EXPECT_THAT(
      requests.value(),
      ElementsAre(
          PropertyList(Row{{"Action", "openFileInEmacs"}, {"File", "/a"}, {"Path", "/"}}),
          PropertyList(Row{{"Action", "openFileInEmacs"}, {"File", "/d/b"}, {"Path", "/d"}})));
  const Menu folders = itemsMenu({{"file:///a", true}, {"file:///b", true}});
  EXPECT_EQ(std::string(find(folders, "*Open in Emacs").action), "openInEmacs");
  EXPECT_THAT(commands(itemsMenu({{"file:///a", true}, {"file:///b"}})),
              Not(Contains("Open in Emacs")));
  EXPECT_THAT(titles(menuForItems(settings(), environment, ListedItems(21, {"file:///a"}))),
              Not(testing::Contains(testing::AnyOf("*Tavrin/*Open in Emacs", "*Set Icon/*Blue"))));
}

TEST_F(MenuBuilding, WhatAsksFirstHasAnEllipsis) {
  set("deleteDirectlyRequiresConfirmation", true);
  EXPECT_THAT(commands(itemsMenu({{"file:///a"}})), Contains("Delete directly…"));
}

TEST_F(MenuBuilding, ACommandThatIsListedTwiceIsThereOnce) {
  set("arrOfOthers", Rows{commandRow("Cut"), commandRow("Paste", 0), commandRow("Cut")});
  EXPECT_THAT(commands(itemsMenu({{"file:///a"}})), ElementsAre("Cut"));
}

TEST_F(MenuBuilding, IdentifiersAreUniqueOverAllMenus) {
  std::vector<std::string> all;
  const auto collect = [&all](const Menu& menu, const auto& collectInner) -> void {
    for (const MenuItem& item : menu) {
      all.push_back(item.identifier);
      collectInner(item.submenu, collectInner);
    }
  };
  environment.hasSecondTerminal = true;
  for (const Menu& menu : {itemsMenu({{"file:///a.png", false, "image/png"}}), folderMenu(),
                           eitherMenu("file:///a")}) {
    collect(menu, collect);
  }
  EXPECT_EQ(std::set<std::string>(all.begin(), all.end()).size(), all.size());
  EXPECT_THAT(all, testing::Each(testing::MatchesRegex("[a-z0-9-]+")));
}

TEST_F(MenuBuilding, EveryActionHasAPlace) {
  std::set<std::string> offered;
  const auto collect = [&offered](const Menu& menu, const auto& collectInner) -> void {
    for (const MenuItem& item : menu) {
      if (item.action != nullptr) offered.insert(item.action);
      collectInner(item.submenu, collectInner);
    }
  };
  for (const Menu& menu : {itemsMenu({{"file:///a.png", false, "image/png"}}), folderMenu()}) {
    collect(menu, collect);
  }
  for (const char* action : action_name::all) EXPECT_THAT(offered, Contains(action));
}

TEST_F(MenuBuilding, ManyItemsAreOneRequest) {
  const ListedItems items(100'000, {"file:///tmp/a"});
  const Menu menu = menuForItems(settings(), environment, items);
  const std::vector<std::string> paths(100'000, "/tmp/a");
  const auto request = requestOf(find(menu, "*Hidden Selected Files"), paths);
  EXPECT_EQ(request.stringForKey("SelectedFilesUrl").size(), 100'000 * 14 - 1);
}

}  // namespace

}  // namespace tavrin
