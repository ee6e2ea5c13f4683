#include <gmock/gmock.h>

#include <algorithm>

#include "foundation/PathString.h"
#include "settings/TemplateFiles.h"
#include "settings/TemplateFolders.h"
#include "tests/settings/SettingsFixture.h"

namespace tavrin {
namespace {

using testing::Contains;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;

PropertyList::Dictionary templateRow(const PropertyList& name, const PropertyList& extension) {
  return {{"displayName", name}, {"extension", extension}, {"enable", 0}};
}

class PreparingTemplateFolders : public SettingsFixture {
 protected:
  void SetUp() override {
    fileManager.addFolder(bundle.resourceFolder);
    fileManager.setResourceFolder(bundle.resourceFolder);
  }

  void addResource(const std::string& name, const std::string& text) {
    fileManager.addFile(bundle.resourceFolder + "/" + name, text);
  }

  void prepare(const PropertyList& rows) {
    standard->setObject(rows, "arrOfCreateNewFile");
    makeController().prepareTemplateFolders();
  }

  std::optional<std::string> textOf(const std::string& name) const {
    return fileManager.textOfFile(container + "/" + name);
  }

  std::vector<std::string> namesIn(const std::string& folder) const {
    auto names = fileManager.contentsOfDirectoryAtPath(container + "/" + folder);
    if (!names) return {names.error().describe()};
    std::sort(names.value().begin(), names.value().end());
    return names.value();
  }

  const std::string container = "/containers/" + bundle.group;
  const std::string templates = container + "/Templates/CreateNewFile";
  const PropertyList::Array textRow{templateRow("Plain Text", "txt")};
};

using Names = std::vector<std::string>;

TEST_F(PreparingTemplateFolders, CopiesTheTemplateAndTheImageOfEachRow) {
  addResource("Plain Text.txt", "text");
  addResource("txt.png", "image of text");
  addResource("md.png", "image of markdown");
  addResource("Other.", "never copied");
  addResource("Not a row.txt", "never copied");
  prepare(PropertyList::Array{templateRow("Plain Text", "txt"), templateRow("Markdown", "md"),
                              templateRow("Other", "")});
  EXPECT_EQ(namesIn("Templates/CreateNewFile"), (Names{"Plain Text.txt", "md.png", "txt.png"}));
  EXPECT_EQ(textOf("Templates/CreateNewFile/Plain Text.txt"), "text");
  EXPECT_EQ(textOf("Templates/CreateNewFile/md.png"), "image of markdown");
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(PreparingTemplateFolders, CopiesTheImagesOfTheMenu) {
  const Names functions{"commonPath", "copyFilesTo", "createNewFile", "customIcon", "moveFilesTo"};
  const Names commands{"Copy Path",
                       "Cut",
                       "Delete directly",
                       "Finder",
                       "Hidden All Files in Path",
                       "Hidden Selected Files",
                       "Image to Icon for iOS",
                       "Image to Icon for mac",
                       "Nohidden All Files in Path",
                       "Nohidden Selected Files",
                       "Open in Emacs",
                       "Open in IDEA",
                       "Open in Sublime Text",
                       "Open in Terminal",
                       "Open in VSCode",
                       "Open in iTerm2",
                       "Paste"};
  for (const Names& names : {functions, commands}) {
    for (const std::string& name : names) addResource(name + ".png", name);
  }
  prepare(PropertyList::Array{});
  const auto withSuffix = [](Names names) {
    for (std::string& name : names) name += ".png";
    return names;
  };
  EXPECT_EQ(namesIn("Templates/FunctionIcon"), withSuffix(functions));
  EXPECT_EQ(namesIn("Templates/OthersMenuItemIcon"), withSuffix(commands));
  EXPECT_EQ(textOf("Templates/OthersMenuItemIcon/Cut.png"), "Cut");
}

TEST_F(PreparingTemplateFolders, KeepsTheUsersTemplatesAndRebuildsTheImagesEachTime) {
  addResource("Plain Text.txt", "text");
  addResource("Cut.png", "old");
  prepare(textRow);
  fileManager.discardItem(templates + "/Plain Text.txt");
  fileManager.addFile(templates + "/Plain Text.txt", "the user's own");
  fileManager.addFile(templates + "/Letter.odt", "added by the user");
  fileManager.addFile(container + "/Templates/OthersMenuItemIcon/stray.png");
  fileManager.addFile(container + "/Templates/FunctionIcon/stray.png");
  fileManager.discardItem(bundle.resourceFolder + "/Cut.png");
  addResource("Cut.png", "new");

  prepare(textRow);
  EXPECT_EQ(textOf("Templates/CreateNewFile/Plain Text.txt"), "the user's own");
  EXPECT_EQ(textOf("Templates/CreateNewFile/Letter.odt"), "added by the user");
  EXPECT_EQ(namesIn("Templates/OthersMenuItemIcon"), Names{"Cut.png"});
  EXPECT_EQ(textOf("Templates/OthersMenuItemIcon/Cut.png"), "new");
  EXPECT_THAT(namesIn("Templates/FunctionIcon"), IsEmpty());
}

TEST_F(PreparingTemplateFolders, ReplacesAnythingElseThatStandsForAnImageFolder) {
  addResource("Cut.png", "image");
  fileManager.addFile("/home/ada/kept.png");
  fileManager.addFile(container + "/Templates/FunctionIcon", "a file");
  fileManager.addSymlink(container + "/Templates/OthersMenuItemIcon", "/home/ada");
  prepare(PropertyList::Array{});
  EXPECT_THAT(namesIn("Templates/FunctionIcon"), IsEmpty());
  EXPECT_EQ(namesIn("Templates/OthersMenuItemIcon"), Names{"Cut.png"});
  EXPECT_EQ(fileManager.textOfFile("/home/ada/Cut.png"), std::nullopt);
  EXPECT_TRUE(fileManager.fileExistsAtPath("/home/ada/kept.png"));
}

TEST_F(PreparingTemplateFolders, NeverLeavesItsFolderForATitle) {
  const std::string cutShort("nul\0byte", 8);
  addResource("secret/key.txt", "secret");
  addResource(cutShort + ".txt", "not to be told from another name");
  fileManager.addFile(deletingLastPathComponent(bundle.resourceFolder) + "/up.txt", "outside");
  prepare(PropertyList::Array{templateRow("../up", "txt"), templateRow("secret/key", "txt"),
                              templateRow("x", "/../../up.txt"), templateRow("", "."),
                              templateRow(cutShort, "txt")});
  EXPECT_THAT(namesIn("Templates/CreateNewFile"), IsEmpty());
  EXPECT_THAT(fileManager.allPaths(), Not(Contains(container + "/Templates/up.txt")));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(PreparingTemplateFolders, TellsWhatCanBeTheNameOfAFile) {
  for (const std::string_view name : {" ", "...", ".txt", "a.", "a\n", "\xFF"}) {
    EXPECT_TRUE(isNameOfOneFile(name)) << name;
  }
  for (const std::string_view name :
       {std::string_view(), std::string_view("."), std::string_view(".."), std::string_view("/"),
        std::string_view("a/b"), std::string_view("a\0b", 3), std::string_view("\0", 1)}) {
    EXPECT_FALSE(isNameOfOneFile(name)) << name;
  }
}

TEST_F(PreparingTemplateFolders, PassesOverRowsThatAreNoRecords) {
  addResource("Plain Text.txt", "text");
  prepare(PropertyList::Array{7, "row", PropertyList::Dictionary{}, templateRow(1, 2), textRow[0]});
  EXPECT_EQ(namesIn("Templates/CreateNewFile"), Names{"Plain Text.txt"});
  prepare("no array");
  EXPECT_EQ(namesIn("Templates/CreateNewFile"), Names{"Plain Text.txt"});
}

TEST_F(PreparingTemplateFolders, LeavesTheSettingsWorkingWithoutAContainer) {
  fileManager.addFile("/containers", "in the way");
  standard->setObject(textRow, "arrOfCreateNewFile");
  makeController().viewDidLoad();
  mainLoop.advance(1);
  EXPECT_EQ(published("arrOfCreateNewFile"), PropertyList(PropertyList::Array{}));
  EXPECT_THAT(log.lines(), SizeIs(1));
}

TEST_F(PreparingTemplateFolders, TellsTheFirstCauseOnceAndGoesOn) {
  addResource("Plain Text.txt", "text");
  addResource("txt.png", "image");
  addResource("Cut.png", "image");
  addResource("Paste.png", "image");
  fileManager.failOn(templates + "/txt.png", std::errc::no_space_on_device);
  fileManager.failOn(container + "/Templates/OthersMenuItemIcon/Paste.png",
                     std::errc::no_space_on_device);
  prepare(textRow);
  EXPECT_EQ(namesIn("Templates/CreateNewFile"), Names{"Plain Text.txt"});
  EXPECT_EQ(namesIn("Templates/OthersMenuItemIcon"), Names{"Cut.png"});
  ASSERT_THAT(log.lines(), SizeIs(1));
  EXPECT_THAT(log.lines()[0], testing::HasSubstr("txt.png"));
}

TEST_F(PreparingTemplateFolders, GoesOnWithTheImagesWhenAFileStandsForTheTemplates) {
  addResource("Cut.png", "image");
  fileManager.addFile(templates, "in the way");
  prepare(textRow);
  EXPECT_EQ(fileManager.textOfFile(templates), "in the way");
  EXPECT_EQ(namesIn("Templates/OthersMenuItemIcon"), Names{"Cut.png"});
  EXPECT_THAT(log.lines(), SizeIs(1));
}

}  // namespace
}  // namespace tavrin
