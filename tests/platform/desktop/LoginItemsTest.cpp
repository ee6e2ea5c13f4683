#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>

#include "platform/linux/GLibPointers.h"
#include "platform/linux/LinuxLoginItems.h"
#include "tests/platform/desktop/DesktopSession.h"
#include "tests/support/FakeLog.h"

namespace tavrin {

bool operator==(const LoginItems::Item& left, const LoginItems::Item& right) {
  return left.reference == right.reference && left.resolvedPath == right.resolvedPath;
}

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Item = LoginItems::Item;

class LoginItemsTest : public testing::Test {
 protected:
  void SetUp() override {
    test::setVariable("XDG_CONFIG_HOME", folder_ / "user");
    test::setVariable("XDG_CONFIG_DIRS", (folder_ / "near") + ":relative::" + (folder_ / "far"));
    test::setVariable("XDG_CURRENT_DESKTOP", "Fox:GNOME");
    test::writeFile(program_, "#!/bin/sh\n");
  }
  void TearDown() override {
    for (const char* name : {"XDG_CONFIG_HOME", "XDG_CONFIG_DIRS", "XDG_CURRENT_DESKTOP"}) {
      test::setVariable(name, std::nullopt);
    }
  }

  void writeEntry(const std::string& place, const std::string& name, const std::string& lines) {
    test::writeFile((folder_ / place) + "/autostart/" + name,
                    "[Desktop Entry]\nType=Application\nName=Test\n" + lines);
  }
  std::string userEntry(const std::string& name) const {
    return test::readFile(folder_ / ("user/autostart/" + name));
  }

  test::TemporaryFolder folder_;
  const std::string program_ = std::filesystem::canonical(folder_.path()).string() + "/program";
  FakeLog log_;
  LinuxLoginItems items_{log_};
};

TEST_F(LoginItemsTest, listWhatThisSessionStarts) {
  std::filesystem::create_symlink(program_, folder_ / "link");
  writeEntry("user", "a.desktop", "Exec=\"" + (folder_ / "link") + "\" --flag %U\n");
  writeEntry("far", "b.desktop", "Exec=no-such-program\n");
  writeEntry("near", "c.desktop", "Exec=" + program_ + "\n");
  writeEntry("far", "c.desktop", "Exec=/bin/false\nHidden=true\n");
  writeEntry("near", "d-overridden.desktop", "Exec=" + program_ + "\n");
  writeEntry("user", "d-overridden.desktop", "Exec=" + program_ + "\nHidden=true\n");
  writeEntry("user", "e-off.desktop", "Exec=/bin/sh\nX-GNOME-Autostart-enabled=false\n");
  writeEntry("user", "f-other.desktop", "Exec=/bin/sh\nOnlyShowIn=KDE;XFCE;\n");
  writeEntry("user", "g-here.desktop", "Exec=" + program_ + "\nOnlyShowIn=KDE;GNOME;\n");
  writeEntry("user", "h-not-here.desktop", "Exec=/bin/sh\nNotShowIn=GNOME;\n");
  writeEntry("user", "i-try.desktop", "Exec=/bin/sh\nTryExec=no-such-program\n");
  writeEntry("user", "j-quote.desktop", "Exec=\"" + program_ + "\n");
  writeEntry("user", "k-none.desktop", "");
  test::writeFile(folder_ / "user/autostart/broken.desktop", "no entry");
  test::writeFile(folder_ / "user/autostart/empty.desktop", "");
  test::writeFile(folder_ / "user/autostart/other.txt", "[Desktop Entry]\nExec=/bin/sh\n");
  std::filesystem::create_directory(folder_ / "user/autostart/folder.desktop");
  EXPECT_THAT(
      items_.snapshot(),
      ElementsAre(Item{"a.desktop", program_}, Item{"b.desktop", std::nullopt},
                  Item{"c.desktop", program_}, Item{"g-here.desktop", program_},
                  Item{"j-quote.desktop", std::nullopt}, Item{"k-none.desktop", std::nullopt}));
}

TEST_F(LoginItemsTest, areEmptyWithoutFolders) {
  EXPECT_THAT(items_.snapshot(), IsEmpty());
}

TEST_F(LoginItemsTest, findAnInsertedProgramAgainWhateverItsName) {
  for (const std::string name : {"plain", "with blank", "100%U", "a\"b`c$d\\e", "tab\tline\nend",
                                 "\xff\xfe", "'quoted'", "back\\nslash", " leading"}) {
    const std::string program = std::filesystem::canonical(folder_.path()).string() + "/" + name;
    test::writeFile(program, "#!/bin/sh\n");
    items_.insertLast(program);
    EXPECT_THAT(items_.snapshot(), ElementsAre(Item{"app.tavrin.Tavrin.desktop", program}));
  }
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(LoginItemsTest, writeAnEntryThatTheDesktopReads) {
  const std::string program = folder_ / "a \"b\" 5%\\n";
  test::writeFile(program, "#!/bin/sh\n");
  items_.insertLast(program);
  test::ChildProcess check(
      {"desktop-file-validate", folder_ / "user/autostart/app.tavrin.Tavrin.desktop"});
  EXPECT_EQ(check.wait(), 0) << check.output() << check.errors();
}

TEST_F(LoginItemsTest, removeAnEntryOfTheUser) {
  items_.insertLast(program_);
  writeEntry("user", "other.desktop", "Exec=/bin/sh\n");
  items_.remove({"app.tavrin.Tavrin.desktop", program_});
  items_.remove({"app.tavrin.Tavrin.desktop", program_});
  ASSERT_EQ(items_.snapshot().size(), 1U);
  EXPECT_EQ(items_.snapshot()[0].reference, "other.desktop");
  EXPECT_FALSE(std::filesystem::exists(folder_ / "user/autostart/app.tavrin.Tavrin.desktop"));
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(LoginItemsTest, switchAnEntryOfTheSystemOffAndOnAgain) {
  const std::string name = "app.tavrin.Tavrin.desktop";
  writeEntry("far", name, "Exec=" + program_ + "\n");
  const std::string before = test::readFile(folder_ / ("far/autostart/" + name));
  items_.remove({name, program_});
  EXPECT_THAT(items_.snapshot(), IsEmpty());
  EXPECT_EQ(test::readFile(folder_ / ("far/autostart/" + name)), before);
  items_.insertLast(program_);
  EXPECT_THAT(items_.snapshot(), ElementsAre(Item{name, program_}));
}

TEST_F(LoginItemsTest, sayWhyAnEntryCannotBeWritten) {
  test::writeFile(folder_ / "user/autostart", "a file where the folder should be");
  items_.insertLast(program_);
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr(folder_ / "user/autostart")));
  EXPECT_EQ(test::readFile(folder_ / "user/autostart"), "a file where the folder should be");
}

}  // namespace

}  // namespace tavrin
