#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/core/HostFixture.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Pair;

struct Editor {
  const char* suffix;
  const char* name;
};
constexpr Editor editors[] = {{"VSCode", "Visual Studio Code - Insiders"},
                              {"IDEA", "IntelliJ IDEA"},
                              {"SublimeText", "Sublime Text"},
                              {"Emacs", "Emacs"}};

class OpenInApplication : public HostFixture {
 protected:
  void SetUp() override {
    system_.fileManager.addFile("/home/ada/in/a.txt", "a");
    launch();
  }

  void openFolder(const std::string& editor, const std::string& path) {
    serve({{"Action", "openIn" + editor}, {"Path", path}});
  }

  void openFile(const std::string& editor, const std::string& file, const std::string& path) {
    serve({{"Action", "openFileIn" + editor}, {"File", file}, {"Path", path}});
  }

  const std::vector<std::pair<std::string, std::string>>& opened() const {
    return system_.workspace.openedWith;
  }
};

TEST_F(OpenInApplication, OpensAFolderOrAFileByTheNameOfTheEditor) {
  grant("/home/ada/in");
  for (const Editor& editor : editors) {
    system_.workspace.openedWith.clear();
    openFolder(editor.suffix, "/home/ada/in");
    openFile(editor.suffix, "/home/ada/in/a.txt", "/home/ada/in");
    EXPECT_THAT(opened(), ElementsAre(Pair("/home/ada/in", editor.name),
                                      Pair("/home/ada/in/a.txt", editor.name)));
  }
  EXPECT_THAT(system_.panels.shown, IsEmpty());
}

TEST_F(OpenInApplication, ChoosesTheEditionAfreshForEachRequest) {
  grant("/home/ada/in");
  const std::string identifier = "com.microsoft.VSCode";
  openFolder("VSCode", "/home/ada/in");
  system_.launchServices.installed[identifier] = {"code.desktop"};
  openFolder("VSCode", "/home/ada/in");
  openFile("VSCode", "/home/ada/in/a.txt", "/home/ada/in");
  system_.launchServices.installed.erase(identifier);
  openFile("VSCode", "/home/ada/in/a.txt", "/home/ada/in");
  EXPECT_THAT(opened(), ElementsAre(Pair("/home/ada/in", "Visual Studio Code - Insiders"),
                                    Pair("/home/ada/in", "Visual Studio Code"),
                                    Pair("/home/ada/in/a.txt", "Visual Studio Code"),
                                    Pair("/home/ada/in/a.txt", "Visual Studio Code - Insiders")));
}

TEST_F(OpenInApplication, AsksForTheFolderAndRemembersIt) {
  system_.panels.answerWithPath("/home/ada/in");
  openFile("Emacs", "/home/ada/in/a.txt", "/home/ada/in");
  openFolder("Emacs", "/home/ada/in");
  ASSERT_EQ(system_.panels.shown.size(), 1U);
  EXPECT_EQ(system_.panels.shown[0].directory->path(), "/home/ada/in");
  EXPECT_EQ(opened().size(), 2U);
}

TEST_F(OpenInApplication, WritesTheFileAndTheEditorToTheLogFirst) {
  openFile("Emacs", "/home/ada/in/a.txt", "/home/ada/in");
  EXPECT_THAT(opened(), IsEmpty()) << "access was refused";
  EXPECT_THAT(system_.log.lines(), ElementsAre("/home/ada/in/a.txt,Emacs"));

  std::vector<std::string> linesAtThePanel;
  system_.panels.answerWith([&](const PanelSettings&) {
    linesAtThePanel = system_.log.lines();
    return std::optional<std::string>("/home/ada/in");
  });
  openFile("IDEA", "/home/ada/in/a.txt", "/home/ada/in");
  EXPECT_THAT(linesAtThePanel,
              ElementsAre("/home/ada/in/a.txt,Emacs", "/home/ada/in/a.txt,IntelliJ IDEA"));
}

TEST_F(OpenInApplication, LeavesNoTraceOfAMissingEditor) {
  grant("/home/ada/in");
  system_.workspace.applicationIsInstalled = false;
  openFolder("SublimeText", "/home/ada/in");
  EXPECT_THAT(system_.log.lines(), IsEmpty());
  openFile("SublimeText", "/home/ada/in/a.txt", "/home/ada/in");
  EXPECT_THAT(system_.log.lines(), ElementsAre("/home/ada/in/a.txt,Sublime Text"));
  EXPECT_THAT(system_.sounds.played, IsEmpty());
  EXPECT_THAT(system_.panels.shown, IsEmpty());
}

TEST_F(OpenInApplication, DoesNothingWithoutAFolderOrAFile) {
  grant("/home/ada/in");
  serve({{"Action", "openInEmacs"}, {"File", "/home/ada/in/a.txt"}});
  EXPECT_THAT(system_.log.lines(), ElementsAre("openInEmacs: no folder given"));
  serve({{"Action", "openFileInEmacs"}});
  serve({{"Action", "openFileInEmacs"}, {"File", "/home/ada/in/a.txt"}});
  serve({{"Action", "openFileInEmacs"}, {"Path", "/home/ada/in"}});
  EXPECT_THAT(system_.log.lines(),
              ElementsAre("openInEmacs: no folder given",  //
                          "(null),Emacs", "openFileInEmacs: no folder given",
                          "/home/ada/in/a.txt,Emacs", "openFileInEmacs: no folder given",
                          "(null),Emacs", "openFileInEmacs: no file given"));
  EXPECT_THAT(opened(), IsEmpty());
  EXPECT_THAT(system_.panels.shown, IsEmpty());
}

TEST_F(OpenInApplication, RefusesValuesOfOtherKindsAndLivesOn) {
  grant("/home/ada/in");
  serve({{"Action", "openInEmacs"}, {"Path", 7}});
  serve({{"Action", "openFileInEmacs"}, {"Path", "/home/ada/in"}, {"File", PropertyList::Array{}}});
  EXPECT_THAT(system_.log.lines(), ElementsAre(HasSubstr("Path"), HasSubstr("File")));
  openFolder("Emacs", "");
  openFolder("Emacs", "/" + std::string(100000, 'x'));
  openFile("Emacs", std::string(100000, 'x'), "/home/ada/in");
  openFile("Emacs", "", "/home/ada/in");
  openFolder("Emacs", "/home/ada/in");
  EXPECT_THAT(opened(), ElementsAre(Pair(std::string(100000, 'x'), "Emacs"), Pair("", "Emacs"),
                                    Pair("/home/ada/in", "Emacs")));
}

}  // namespace
}  // namespace tavrin
