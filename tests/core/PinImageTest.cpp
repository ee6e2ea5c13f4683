#include <gmock/gmock.h>

#include <string>
#include <vector>

#include "tests/core/HostFixture.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class PinImage : public HostFixture {
 protected:
  void SetUp() override {
    for (const char* name : {"a.png", "notes.txt", "b.JPG", "photo"}) {
      system_.fileManager.addFile(std::string("/home/ada/in/") + name, "content");
    }
    system_.fileManager.addFile("/home/ada/else/c.png", "content");
    launch();
  }

  void pin(const std::string& selection) {
    serve({{"Action", "pinbySnapvane"}, {"SelectedFilesUrl", selection}});
  }

  FakePasteboards::Content& drag() { return system_.pasteboards.contents["drag"]; }
  std::vector<std::string> pinned() { return drag().urls.value_or(std::vector<std::string>()); }
  const std::vector<std::string>& posted() { return system_.distributedNotifications.posted; }
};

TEST_F(PinImage, HandsOverTheImagesInTheirOrder) {
  grant("/home/ada/in");
  drag().string = "an older content";
  pin("file:///home/ada/in/b.JPG|file:///home/ada/in/notes.txt|file:///home/ada/in/photo|"
      "file:///home/ada/in/a.png");
  EXPECT_THAT(pinned(), ElementsAre("/home/ada/in/b.JPG", "/home/ada/in/a.png"));
  EXPECT_EQ(drag().string, std::nullopt);
  EXPECT_THAT(posted(), ElementsAre("PinFromPasteboardByTavrin"));
  ASSERT_EQ(system_.distributedNotifications.options.size(), 1U);
  EXPECT_TRUE(system_.distributedNotifications.options[0].deliverImmediately);
  EXPECT_TRUE(system_.distributedNotifications.options[0].postToAllSessions);
  EXPECT_THAT(system_.log.lines(), IsEmpty());
}

TEST_F(PinImage, AsksForTheFirstItemItselfAlone) {
  system_.panels.answerWithPath("/home/ada/in/notes.txt");
  pin("file:///home/ada/in/notes.txt|file:///home/ada/else/c.png");
  ASSERT_EQ(system_.panels.shown.size(), 1U);
  EXPECT_EQ(system_.panels.shown[0].directory->path(), "/home/ada/in/notes.txt");
  EXPECT_THAT(pinned(), ElementsAre("/home/ada/else/c.png"));
  pin("file:///home/ada/in/notes.txt");
  EXPECT_EQ(system_.panels.shown.size(), 1U);
}

TEST_F(PinImage, LeavesEverythingAsItWasWhenAccessIsRefused) {
  drag().string = "an older content";
  pin("file:///home/ada/in/a.png");
  EXPECT_EQ(drag().string, "an older content");
  EXPECT_THAT(posted(), IsEmpty());
  EXPECT_THAT(system_.log.lines(), ElementsAre("pinbySnapvane: no access to /home/ada/in/a.png"));
}

TEST_F(PinImage, WritesAnEmptyListWithoutImages) {
  grant("/home/ada/in");
  drag().string = "an older content";
  pin("file:///home/ada/in/notes.txt");
  EXPECT_EQ(drag().string, std::nullopt);
  EXPECT_EQ(drag().urls, std::vector<std::string>());
  EXPECT_THAT(posted(), ElementsAre("PinFromPasteboardByTavrin"));
}

TEST_F(PinImage, TellsNobodyOfAPasteboardThatTakesNothing) {
  grant("/home/ada/in");
  system_.pasteboards.takesContent = false;
  pin("file:///home/ada/in/a.png");
  EXPECT_EQ(drag().urls, std::nullopt);
  EXPECT_THAT(posted(), IsEmpty());
  EXPECT_THAT(system_.log.lines(),
              ElementsAre(testing::AllOf(HasSubstr("pinbySnapvane: "), HasSubstr("pasteboard"))));
}

TEST_F(PinImage, PassesOverWhatIsNoUrl) {
  grant("/home/ada/in");
  pin("file:///with a blank.png|file:///home/ada/in/a.png||https://example.org/x.png|"
      "file:///broken%zz.png|file:///home/ada/in/b.JPG");
  EXPECT_THAT(pinned(), ElementsAre("/home/ada/in/a.png", "/home/ada/in/b.JPG"));
  EXPECT_THAT(system_.log.lines(),
              ElementsAre(HasSubstr("with a blank"), "pinbySnapvane: no file URL: ",
                          HasSubstr("example.org"), HasSubstr("broken")));
  EXPECT_EQ(posted().size(), 1U);
}

TEST_F(PinImage, DoesNothingWithoutASelection) {
  grant("/home/ada/in");
  drag().string = "an older content";
  serve({{"Action", "pinbySnapvane"}});
  serve({{"Action", "pinbySnapvane"}, {"SelectedFilesUrl", 7}});
  pin("");
  pin("|||");
  pin(std::string(100000, 'x'));
  EXPECT_EQ(drag().string, "an older content");
  EXPECT_THAT(posted(), IsEmpty());
  EXPECT_THAT(system_.panels.shown, IsEmpty());
  EXPECT_EQ(system_.log.lines().size(), 1U + 1 + 1 + 4 + 1);
  pin("file:///home/ada/in/a.png");
  EXPECT_EQ(posted().size(), 1U);
}

}  // namespace
}  // namespace tavrin
