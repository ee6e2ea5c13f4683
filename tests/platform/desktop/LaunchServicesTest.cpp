#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "platform/linux/LinuxLaunchServices.h"
#include "platform/linux/LinuxPropertyListSerialization.h"
#include "tests/platform/desktop/DesktopSession.h"
#include "tests/support/FakeBundle.h"
#include "tests/support/FakeLog.h"

namespace tavrin {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class LaunchServicesTest : public testing::Test {
 protected:
  LaunchServicesTest() {
    bundle_.resources["Applications.plist"] = TAVRIN_TEST_RESOURCES "/Applications.plist";
  }

  void TearDown() override {
    std::filesystem::remove_all(user_ + "/applications");
    std::filesystem::remove_all(system_ + "/applications");
  }

  static void install(const std::string& folder, const std::string& id,
                      const std::string& lines = "Exec=/bin/sh\n") {
    test::writeFile(folder + "/applications/" + id,
                    "[Desktop Entry]\nType=Application\nName=Editor\n" + lines);
  }

  /// GLib learns of new entries by the way.
  void expectInstalled(const std::string& bundleIdentifier, const std::vector<std::string>& ids) {
    EXPECT_TRUE(test::waitUntil([&] {
      return services_.applicationsForBundleIdentifier(bundleIdentifier) == ids;
    })) << bundleIdentifier
        << ": "
        << testing::PrintToString(services_.applicationsForBundleIdentifier(bundleIdentifier));
  }

  const std::string user_ = g_get_user_data_dir();
  const std::string system_ = g_get_system_data_dirs()[0];
  FakeLog log_;
  FakeBundle bundle_;
  LinuxPropertyListSerialization propertyLists_;
  ApplicationTable table_{bundle_, propertyLists_, log_};
  LinuxLaunchServices services_{table_};
};

TEST_F(LaunchServicesTest, findPackagedFlatpakAndSnapEntries) {
  install(system_, "code.desktop");
  install(user_, "code_code.desktop");
  install(system_, "com.visualstudio.code.desktop");
  install(user_, "code-insiders.desktop");
  install(user_, "jetbrains-idea-ce.desktop");
  install(system_, "sublime_text.desktop");
  install(system_, "emacs.desktop");
  expectInstalled("com.microsoft.VSCode",
                  {"code.desktop", "code_code.desktop", "com.visualstudio.code.desktop"});
  expectInstalled("com.microsoft.VSCodeInsiders", {"code-insiders.desktop"});
  expectInstalled("com.jetbrains.intellij", {"jetbrains-idea-ce.desktop"});
  expectInstalled("com.sublimetext.4", {"sublime_text.desktop"});
  expectInstalled("com.sublimetext.3", {"sublime_text.desktop"});
  expectInstalled("org.gnu.Emacs", {"emacs.desktop"});
  EXPECT_THAT(services_.applicationsForBundleIdentifier("com.example.Unknown"), IsEmpty());
  EXPECT_THAT(services_.applicationsForBundleIdentifier(""), IsEmpty());
}

TEST_F(LaunchServicesTest, passOverWhatIsHiddenOrCannotRun) {
  install(user_, "jetbrains-idea.desktop", "Exec=/bin/sh\nNoDisplay=true\n");
  install(user_, "intellij-idea-ultimate_intellij-idea-ultimate.desktop",
          "Exec=/bin/sh\nHidden=true\n");
  install(user_, "com.jetbrains.IntelliJ-IDEA-Ultimate.desktop",
          "Exec=/bin/sh\nTryExec=no-such-program\n");
  install(user_, "intellij-idea-ultimate-edition.desktop", "Exec=no-such-program\n");
  install(system_, "idea.desktop");
  install(user_, "idea.desktop", "Exec=/bin/sh\nHidden=true\n");
  expectInstalled("com.jetbrains.intellij", {"jetbrains-idea.desktop"});
}

TEST_F(LaunchServicesTest, areEmptyWithALineInTheLogWhenTheTableIsMissing) {
  bundle_.resources.clear();
  EXPECT_THAT(services_.applicationsForBundleIdentifier("org.gnu.Emacs"), IsEmpty());
  EXPECT_THAT(services_.applicationsForBundleIdentifier("org.gnu.Emacs"), IsEmpty());
  EXPECT_THAT(log_.lines(), ElementsAre(HasSubstr("Applications")));
}

}  // namespace

}  // namespace tavrin
