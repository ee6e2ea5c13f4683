#include <string>
#include <utility>
#include <vector>

#include "tests/core/HostFixture.h"

namespace tavrin {
namespace {

const std::vector<std::string> success = {"Volume Mount.aiff"};

class ImageToIconSet : public HostFixture {
 protected:
  void SetUp() override {
    system_.fileManager.addFile("/home/ada/My Pics/logo (1).png", "image");
    system_.fileManager.addFile("/home/ada/logo.png", "image");
    grant("/home/ada");
  }

  void convert(const char* action, PropertyList file) {
    system_.sounds.played.clear();
    serve({{"Action", action}, {"File", std::move(file)}});
  }

  /// The script of the newest run; "" when nothing was run.
  std::string scriptFor(const char* action, const std::string& file) {
    system_.shell.runs.clear();
    convert(action, file);
    return system_.shell.runs.empty() ? "" : system_.shell.runs.back().script;
  }

  bool folderStands(const std::string& path) { return system_.fileManager.isDirectoryAtPath(path); }
};

TEST_F(ImageToIconSet, MakesTheMacSetByTenLines) {
  EXPECT_EQ(scriptFor("imageToIconSetForMac", "/home/ada/logo.png"),
            R"(sips -z 16 16 /home/ada/logo.png -o /home/ada/logo\(Mac\)/icon_16x16.png
sips -z 32 32 /home/ada/logo.png -o /home/ada/logo\(Mac\)/icon_16x16@2x.png
sips -z 32 32 /home/ada/logo.png -o /home/ada/logo\(Mac\)/icon_32x32.png
sips -z 64 64 /home/ada/logo.png -o /home/ada/logo\(Mac\)/icon_32x32@2x.png
sips -z 128 128 /home/ada/logo.png -o /home/ada/logo\(Mac\)/icon_128x128.png
sips -z 256 256 /home/ada/logo.png -o /home/ada/logo\(Mac\)/icon_128x128@2x.png
sips -z 256 256 /home/ada/logo.png -o /home/ada/logo\(Mac\)/icon_256x256.png
sips -z 512 512 /home/ada/logo.png -o /home/ada/logo\(Mac\)/icon_256x256@2x.png
sips -z 512 512 /home/ada/logo.png -o /home/ada/logo\(Mac\)/icon_512x512.png
sips -z 1024 1024 /home/ada/logo.png -o /home/ada/logo\(Mac\)/icon_512x512@2x.png)");
  EXPECT_EQ(system_.shell.runs.back().writableFolder, "/home/ada");
  EXPECT_TRUE(folderStands("/home/ada/logo(Mac)"));
  EXPECT_EQ(system_.sounds.played, success);
  EXPECT_TRUE(system_.log.lines().empty());
}

TEST_F(ImageToIconSet, MakesTheSetForiOSByTwentyLinesEachEnded) {
  standard_->setObject(true, settings_key::enableImageToIconInMac);
  std::string expected;
  for (const char* size : {"29", "40",  "48",  "50",  "55",  "57",  "58",  "72",  "76",  "80",
                           "87", "100", "114", "120", "144", "153", "160", "172", "180", "196"}) {
    expected += std::string("sips -z ") + size + " " + size +
                " /home/ada/logo.png -o /home/ada/logo\\(iOS\\)/icon_" + size + "x" + size +
                ".png\n";
  }
  EXPECT_EQ(scriptFor("imageToIconSetForiOS", "/home/ada/logo.png"), expected);
  EXPECT_TRUE(folderStands("/home/ada/logo(iOS)"));
  EXPECT_EQ(system_.sounds.played, success);
}

TEST_F(ImageToIconSet, QuotesBlanksAndParenthesesAndNothingElse) {
  const std::string script = scriptFor("imageToIconSetForMac", "/home/ada/My Pics/logo (1).png");
  EXPECT_TRUE(script.starts_with(R"(sips -z 16 16 /home/ada/My\ Pics/logo\ \(1\).png )"
                                 R"(-o /home/ada/My\ Pics/logo\ \(1\)\(Mac\)/icon_16x16.png)"))
      << script;
  EXPECT_TRUE(folderStands("/home/ada/My Pics/logo (1)(Mac)"));
  EXPECT_EQ(system_.shell.runs.back().writableFolder, "/home/ada/My Pics");

  const std::string special = "/home/ada/a$b'c\"d;e&f\\g\nh\t*\xff[i].png";
  EXPECT_NE(scriptFor("imageToIconSetForiOS", special).find(" " + special + " -o "),
            std::string::npos);
}

TEST_F(ImageToIconSet, TheSwitchAppendsTheCompileTailToTheMacSetAlone) {
  const std::string folder = R"(/home/ada/logo\(Mac\))";
  const std::string tail = "icon_512x512@2x.png;mv " + folder + " " + folder +
                           ".iconset;iconutil -c icns " + folder + ".iconset;rm -R " + folder +
                           ".iconset";
  for (const PropertyList& on : {PropertyList(true), PropertyList("1"), PropertyList(2)}) {
    standard_->setObject(on, settings_key::enableImageToIconInMac);
    EXPECT_TRUE(scriptFor("imageToIconSetForMac", "/home/ada/logo.png").ends_with(tail));
    EXPECT_TRUE(system_.fileManager.removeItemAtPath("/home/ada/logo(Mac)"));
  }
  standard_->setObject(false, settings_key::enableImageToIconInMac);
  EXPECT_EQ(scriptFor("imageToIconSetForMac", "/home/ada/logo.png").find(';'), std::string::npos);
}

TEST_F(ImageToIconSet, FoldersAreNumberedByTheNamingRule) {
  for (const char* expected :
       {"/home/ada/logo(Mac)", "/home/ada/logo(Mac) 2", "/home/ada/logo(Mac) 3"}) {
    EXPECT_FALSE(folderStands(expected)) << expected;
    convert("imageToIconSetForMac", "/home/ada/logo.png");
    EXPECT_TRUE(folderStands(expected)) << expected;
  }
  EXPECT_NE(system_.shell.runs.back().script.find(R"(-o /home/ada/logo\(Mac\)\ 3/icon_16x16.png)"),
            std::string::npos);

  convert("imageToIconSetForMac", "/home/ada/my.icon.png");
  convert("imageToIconSetForMac", "/home/ada/my.icon.png");
  EXPECT_TRUE(folderStands("/home/ada/my.icon(Mac)"));
  EXPECT_TRUE(folderStands("/home/ada/my 2.icon(Mac)"));
}

TEST_F(ImageToIconSet, TheSoundComesAfterTheScriptWhateverBecomesOfIt) {
  system_.shell.during = [this] { EXPECT_TRUE(system_.sounds.played.empty()); };
  system_.shell.result = 127;
  convert("imageToIconSetForMac", "/home/ada/logo.png");
  EXPECT_EQ(system_.sounds.played, success);
  EXPECT_TRUE(system_.log.lines().empty());

  system_.shell.result =
      SystemError{"start", "/opt/shell", std::make_error_code(std::errc::argument_list_too_long)};
  convert("imageToIconSetForiOS", "/home/ada/logo.png");
  EXPECT_EQ(system_.sounds.played, success);
  ASSERT_EQ(system_.log.lines().size(), 1U);
  EXPECT_EQ(system_.log.lines().back(),
            "imageToIconSetForiOS: start /opt/shell: Argument list too long");
}

TEST_F(ImageToIconSet, AFolderThatCannotBeMadeIsLoggedAndTheScriptRuns) {
  system_.fileManager.failOn("/home/ada/logo(iOS)", std::errc::read_only_file_system);
  EXPECT_NE(scriptFor("imageToIconSetForiOS", "/home/ada/logo.png"), "");
  ASSERT_EQ(system_.log.lines().size(), 1U);
  EXPECT_NE(system_.log.lines().back().find("Read-only"), std::string::npos);
  EXPECT_EQ(system_.sounds.played, success);
}

TEST_F(ImageToIconSet, WithoutAGrantNothingIsMadeAndNothingSounds) {
  system_.fileManager.addFile("/srv/pictures/logo.png", "image");
  convert("imageToIconSetForMac", "/srv/pictures/logo.png");
  ASSERT_EQ(system_.panels.shown.size(), 1U);
  EXPECT_EQ(system_.panels.shown.back().directory->path(), "/srv/pictures");
  EXPECT_FALSE(folderStands("/srv/pictures/logo(Mac)"));
  EXPECT_TRUE(system_.shell.runs.empty());
  EXPECT_TRUE(system_.sounds.played.empty());

  system_.panels.answerWithPath("/srv/pictures");
  convert("imageToIconSetForMac", "/srv/pictures/logo.png");
  EXPECT_EQ(system_.sounds.played, success);
  EXPECT_EQ(standard_->dictionaryForKey("cachedBookmarks").count("/srv/pictures"), 1U);
}

TEST_F(ImageToIconSet, ARequestWithoutAnImageDoesNothingButALine) {
  std::size_t lines = 0;
  for (const char* action : {"imageToIconSetForMac", "imageToIconSetForiOS"}) {
    for (const PropertyList& file :
         {PropertyList(""), PropertyList("logo.png"), PropertyList("file:///home/ada/logo.png"),
          PropertyList(std::string(200'000, 'x')), PropertyList(5),
          PropertyList(PropertyList::Array{"/home/ada/logo.png"})}) {
      convert(action, file);
      EXPECT_EQ(system_.log.lines().size(), ++lines);
    }
    serve({{"Action", action}});
    EXPECT_EQ(system_.log.lines().size(), ++lines);
  }
  EXPECT_TRUE(system_.shell.runs.empty());
  EXPECT_TRUE(system_.sounds.played.empty());
  EXPECT_TRUE(system_.panels.shown.empty());
}

}  // namespace
}  // namespace tavrin
