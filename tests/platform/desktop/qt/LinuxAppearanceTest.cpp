#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QTest>
#include <vector>

#include "platform/linux/LinuxAppearance.h"
#include "tests/platform/desktop/qt/FakeDesktopServices.h"

namespace tavrin {
namespace {

using testing::ElementsAre;

const auto appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const auto colourScheme = QStringLiteral("color-scheme");

class LinuxAppearanceTest : public testing::Test {
 protected:
  LinuxAppearance::Changed recorder() {
    return [this](const Appearance& now) {
      told_.push_back(now.isDark);
      contrasts_.push_back(now.hasMoreContrast);
    };
  }
  bool waitForTold(std::size_t count) {
    return QTest::qWaitFor([&] { return told_.size() >= count; });
  }

  std::vector<bool> told_;
  std::vector<bool> contrasts_;
};

TEST_F(LinuxAppearanceTest, readsTheColourSchemeAndFollowsItsChanges) {
  test::FakeSettingsPortal portal(1);
  const LinuxAppearance appearance(recorder());
  EXPECT_TRUE(told_.empty());
  ASSERT_TRUE(waitForTold(1));
  EXPECT_THAT(told_, ElementsAre(true));
  portal.change(appearanceGroup, QStringLiteral("contrast"), 0);
  portal.change(QStringLiteral("org.gnome.desktop"), colourScheme, 0);
  portal.change(appearanceGroup, colourScheme, 1);
  portal.change(appearanceGroup, colourScheme, 2);
  portal.change(appearanceGroup, colourScheme, 1);
  ASSERT_TRUE(waitForTold(3));
  EXPECT_THAT(told_, ElementsAre(true, false, true));
}

TEST_F(LinuxAppearanceTest, followsTheWishForMoreContrastByEitherKey) {
  test::FakeSettingsPortal portal(0);
  const LinuxAppearance appearance(recorder());
  ASSERT_TRUE(waitForTold(1));
  const auto gnome = QStringLiteral("org.gnome.desktop.a11y.interface");
  portal.change(appearanceGroup, QStringLiteral("contrast"), 1);
  portal.change(gnome, QStringLiteral("high-contrast"), 1);
  portal.change(appearanceGroup, QStringLiteral("contrast"), 0);
  portal.change(gnome, QStringLiteral("high-contrast"), 0);
  ASSERT_TRUE(waitForTold(3));
  EXPECT_THAT(contrasts_, ElementsAre(false, true, false));
}

TEST_F(LinuxAppearanceTest, noPreferenceIsLight) {
  const test::FakeSettingsPortal portal(0);
  const LinuxAppearance appearance(recorder());
  ASSERT_TRUE(waitForTold(1));
  EXPECT_THAT(told_, ElementsAre(false));
}

TEST_F(LinuxAppearanceTest, withoutAPortalItIsLightUntilOneComes) {
  const LinuxAppearance appearance(recorder());
  ASSERT_TRUE(waitForTold(1));
  EXPECT_THAT(told_, ElementsAre(false));
  test::FakeSettingsPortal portal(0);
  ASSERT_TRUE(QTest::qWaitFor([] {
    return QDBusConnection::sessionBus().interface()->isServiceRegistered(
        QStringLiteral("org.freedesktop.portal.Desktop"));
  }));
  portal.change(appearanceGroup, colourScheme, 1);
  ASSERT_TRUE(waitForTold(2));
  EXPECT_THAT(told_, ElementsAre(false, true));
}

}  // namespace
}  // namespace tavrin
