#include <functional>
#include <string>
#include <vector>

#include "foundation/ActionNames.h"
#include "tests/core/HostFixture.h"

namespace tavrin {
namespace {

using Lines = std::vector<std::string>;

class Dispatch : public HostFixture {
 protected:
  /// What the log says about a request with nothing but an action.
  Lines logOf(const std::string& action) {
    const std::size_t before = system_.log.lines().size();
    serve({{"Action", action}});
    const Lines lines = system_.log.lines();
    return {lines.begin() + static_cast<std::ptrdiff_t>(before), lines.end()};
  }
};

TEST_F(Dispatch, ComparesActionsExactly) {
  EXPECT_EQ(logOf("unHiddenSelectedFiles"), Lines{"unHiddenSelectedFiles: no items given"});
  EXPECT_EQ(logOf("unhiddenAllFilesInPath"), Lines{"unhiddenAllFilesInPath: no folder given"});
  for (const char* unknown : {"unhiddenSelectedFiles", "UnhiddenAllFilesInPath", "CopyFilesTo",
                              "copyFilesTo ", "", "rm -rf"}) {
    EXPECT_EQ(logOf(unknown), Lines{}) << unknown;
    EXPECT_TRUE(system_.sounds.played.empty()) << unknown;
  }
}

TEST_F(Dispatch, IgnoresWhatIsNoRequestAndSaysWhyOnce) {
  system_.propertyLists.files = {
      {"/array", PropertyList::Array{}},
      {"/numeric action", PropertyList::Dictionary{{"Action", 5}}},
      {"/listed paths",
       PropertyList::Dictionary{{"Action", "copyFilesTo"},
                                {"SelectedFilesUrl", PropertyList::Array{"file:///a"}}}},
      {"/tag", PropertyList::Dictionary{{"Action", "customIcon"}, {"Tag", PropertyList::Array{}}}}};
  std::size_t expectedLines = 0;
  for (const char* file : {"/array", "/numeric action", "/listed paths", "/tag", "/missing"}) {
    EXPECT_TRUE(host().applicationOpenFile(file)) << file;
    EXPECT_EQ(system_.log.lines().size(), ++expectedLines) << file;
  }
  EXPECT_TRUE(host().opened());
  EXPECT_TRUE(system_.sounds.played.empty());
}

TEST_F(Dispatch, ATagMayBeANumberOrAString) {
  for (const PropertyList& tag : {PropertyList(2), PropertyList("2"), PropertyList(2.5)}) {
    auto request = ActionRequest::requestWithPropertyList(PropertyList::Dictionary{{"Tag", tag}});
    ASSERT_TRUE(bool(request));
    EXPECT_EQ(request.value().tag(), 2);
  }
}

TEST_F(Dispatch, ChoosesTheInsidersBuildUnlessTheEditorIsInstalled) {
  EXPECT_EQ(host().codeEditorName(), "Visual Studio Code - Insiders");
  system_.launchServices.installed["com.microsoft.VSCode"] = {"code.desktop"};
  EXPECT_EQ(host().codeEditorName(), "Visual Studio Code");
}

TEST_F(Dispatch, OpensACommonPathInsideItsGrant) {
  for (const char* folder : {"/home/ada/Documents", "/home/ada"}) {
    system_.fileManager.addFolder(folder);
  }
  grant("/home/ada");
  serve({{"Action", "openCommonPath"}, {"Path", "~/Documents"}});
  serve({{"Action", "openCommonPath"}, {"Path", "~"}});
  EXPECT_EQ(system_.workspace.shownFolders, (Lines{"/home/ada/Documents", "/home/ada"}));

  serve({{"Action", "openCommonPath"}, {"Path", "/etc"}});
  serve({{"Action", "openCommonPath"}});
  EXPECT_EQ(system_.workspace.shownFolders.size(), 2U);
  EXPECT_EQ(system_.panels.shown.size(), 1U);
}

class RequestLineTest : public testing::Test {
 protected:
  FakeMainLoop mainLoop_;
  FakeLog log_;
  Lines handled_;
};

TEST_F(RequestLineTest, HandlesOneAtATimeInOrderAcrossNestedLoops) {
  int depth = 0;
  RequestLine line(mainLoop_, log_, [&](const std::string& file) {
    EXPECT_EQ(++depth, 1);
    if (file == "/1") {
      line.add("/3");
      mainLoop_.runPending();
    }
    handled_.push_back(file);
    --depth;
  });
  line.add("/1");
  line.add("/2");
  EXPECT_TRUE(handled_.empty());
  mainLoop_.runPending();
  EXPECT_EQ(handled_, (Lines{"/1", "/2", "/3"}));
  EXPECT_FALSE(line.isBusy());
}

TEST_F(RequestLineTest, WaitsForAHoldAndThenGoesOn) {
  RequestLine::Hold hold;
  RequestLine line(mainLoop_, log_, [&](const std::string& file) {
    handled_.push_back(file);
    if (file == "/1") hold = line.hold();
  });
  line.add("/1");
  line.add("/2");
  mainLoop_.runPending();
  EXPECT_EQ(handled_, Lines{"/1"});
  EXPECT_TRUE(line.isBusy());
  hold.reset();
  mainLoop_.runPending();
  EXPECT_EQ(handled_, (Lines{"/1", "/2"}));
}

TEST_F(RequestLineTest, AnExceptionEndsOnlyItsRequest) {
  RequestLine line(mainLoop_, log_, [&](const std::string& file) {
    if (file == "/bad") throw std::runtime_error("reason");
    handled_.push_back(file);
  });
  line.add("/bad");
  line.add("/good");
  mainLoop_.runPending();
  EXPECT_EQ(handled_, Lines{"/good"});
  EXPECT_EQ(log_.lines(), Lines{"request /bad ended early: reason"});
}

TEST_F(RequestLineTest, AHoldMayOutliveTheLine) {
  RequestLine::Hold hold;
  {
    RequestLine line(mainLoop_, log_, [&](const std::string& file) { handled_.push_back(file); });
    hold = line.hold();
    line.add("/late");
  }
  hold.reset();
  mainLoop_.runPending();
  EXPECT_TRUE(handled_.empty());
}

}  // namespace
}  // namespace tavrin
