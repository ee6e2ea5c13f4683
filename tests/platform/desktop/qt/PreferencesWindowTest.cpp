#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QLineEdit>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <algorithm>
#include <cmath>

#include "platform/SystemDefaults.h"
#include "platform/linux/QtWindows.h"
#include "settings/window/QtPreferencesWindow.h"
#include "settings/window/RuleTableView.h"
#include "settings/window/SidebarButton.h"
#include "settings/window/WindowPalette.h"
#include "tests/support/FakePlatform.h"

namespace tavrin {
namespace {

PropertyList::Array othersRows() {
  const auto row = [](const char* action, bool on) {
    return PropertyList::Dictionary{
        {"Action", action}, {"displayName", action}, {"enable", on ? 1 : 0}};
  };
  return {row("Cut", true), row("Paste", false), row("Translate by Google", false)};
}

class PreferencesWindowTest : public testing::Test {
 protected:
  PreferencesWindowTest() { standard_->setObject(othersRows(), settings_key::arrOfOthers); }

  QtPreferencesWindow& window() {
    if (!window_) {
      window_ =
          std::make_unique<QtPreferencesWindow>(system_.platform, *standard_, settingsController_);
    }
    return *window_;
  }

  template <typename Control>
  Control& outlet(const char* name) {
    return *window().findChild<Control*>(QString::fromUtf8(name));
  }

  FakePlatform system_;
  std::unique_ptr<UserDefaults> standard_ = system_.userDefaults.standardUserDefaults();
  DefaultSettings defaults_;
  WorkingLists lists_{*standard_};
  SettingsController settingsController_{system_.platform, *standard_, lists_, defaults_};
  std::unique_ptr<QtPreferencesWindow> window_;
};

TEST_F(PreferencesWindowTest, isTheMainWindowUnderItsNameAndTellsWhenItIsClosed) {
  EXPECT_EQ(window().objectName(), QStringLiteral("Prefswindow"));
  EXPECT_EQ(window().windowTitle(), QStringLiteral("Tavrin"));
  EXPECT_EQ(mainWindowWidget(), nullptr);
  window().makeKeyAndOrderFront();
  EXPECT_TRUE(QTest::qWaitForWindowActive(&window()));
  PreferencesWindow& seenByTheProgram = window();
  EXPECT_TRUE(seenByTheProgram.isVisible());
  EXPECT_EQ(widgetOfWindow(&seenByTheProgram), mainWindowWidget());
  int closed = 0;
  window().setClosedAction([&] { ++closed; });
  window().close();
  EXPECT_FALSE(window().isVisible());
  EXPECT_EQ(closed, 1);
}

TEST_F(PreferencesWindowTest, comesBackInTheSizeThatTheUserGaveIt) {
  window().makeKeyAndOrderFront();
  window().resize(790, 555);
  window().close();
  window_.reset();
  EXPECT_EQ(window().size(), QSize(790, 555));
  window_.reset();
  standard_->setObject("100000 100000 780 550", "NSWindow Frame Prefswindow");
  EXPECT_NE(window().size(), QSize(780, 550)) << "a place that no screen shows";
  window_.reset();
  standard_->setObject("0 0 100000 100000", "NSWindow Frame Prefswindow");
  EXPECT_EQ(window().size(), window().screen()->availableSize());
}

TEST_F(PreferencesWindowTest, onlyTheUserCallsTheActionOfTheCheckBox) {
  int calls = 0;
  bool stateInAction = false;
  window().setAuthorizeRootButtonAction([&] {
    ++calls;
    stateInAction = window().authorizeRootButtonState();
  });
  window().setAuthorizeRootButtonState(true);
  window().setAuthorizeRootButtonState(false);
  EXPECT_EQ(calls, 0);
  QTest::keyClick(&outlet<QCheckBox>("authorizeRootButton"), Qt::Key_Space);
  EXPECT_EQ(calls, 1);
  EXPECT_TRUE(stateInAction);
}

TEST_F(PreferencesWindowTest, switchesFollowTheirSettingsInBothDirections) {
  auto& box = outlet<QCheckBox>("enableCopyFilesTo");
  EXPECT_FALSE(box.isChecked());
  standard_->setObject("YES", settings_key::enableCopyFilesTo);
  EXPECT_TRUE(box.isChecked());
  box.click();
  EXPECT_EQ(standard_->objectForKey(settings_key::enableCopyFilesTo), PropertyList(false));
  auto& asks = outlet<QCheckBox>("deleteDirectlyRequiresConfirmation");
  standard_->setObject(true, settings_key::enableDirectDeleteFiles);
  EXPECT_FALSE(asks.isChecked());
  asks.click();
  EXPECT_FALSE(standard_->boolForKey(settings_key::enableDirectDeleteFiles));
  EXPECT_TRUE(standard_->boolForKey(settings_key::deleteDirectlyRequiresConfirmation));
}

TEST_F(PreferencesWindowTest, restartsTheFileManagersWithItsButton) {
  auto& button = outlet<QPushButton>("restartFinderButton");
  EXPECT_EQ(system_.workspace.fileViewerRestarts, 0);
  button.click();
  EXPECT_EQ(system_.workspace.fileViewerRestarts, 1);
}

TEST_F(PreferencesWindowTest, optionControlsStandInTheRowsOfTheirCommandsAfterEveryMove) {
  auto& table = outlet<RuleTableView>("othersTableView");
  const auto rowOf = [&](const char* control) {
    for (int row = 0; row < table.model()->rowCount(); ++row) {
      const QWidget* cell = table.indexWidget(table.model()->index(row, 3));
      if (cell != nullptr && cell->findChild<QWidget*>(QString::fromUtf8(control))) return row;
    }
    return -1;
  };
  window().makeKeyAndOrderFront();
  EXPECT_EQ(rowOf("popUpButtonOfCut"), 0);
  EXPECT_EQ(rowOf("helpButtonAboutService2"), 2);
  EXPECT_EQ(rowOf("popUpButtonOfImageToIconInMac"), -1);
  settingsController_.rules().moveRow(RuleList::Others, 0, 1);
  EXPECT_EQ(rowOf("popUpButtonOfCut"), 1);
  EXPECT_EQ(table.indexWidget(table.model()->index(0, 3)), nullptr);
  standard_->setObject(PropertyList::Array{}, settings_key::arrOfOthers);
  EXPECT_EQ(outlet<QWidget>("popUpButtonOfCut").isVisible(), false);
}

TEST_F(PreferencesWindowTest, keysSwitchAndMoveTheSelectedRow) {
  auto& table = outlet<RuleTableView>("othersTableView");
  const auto actionAt = [&](std::size_t row) {
    return settingsController_.rules().rows(RuleList::Others)[row].stringForKey("Action");
  };
  table.selectRow(0);
  QTest::keyClick(&table, Qt::Key_Space);
  EXPECT_FALSE(settingsController_.rules().rows(RuleList::Others)[0].boolForKey("enable"));
  QTest::keyClick(&table, Qt::Key_Down, Qt::AltModifier);
  EXPECT_EQ(actionAt(1), "Cut");
  EXPECT_EQ(table.selectedRow(), 1);
  QTest::keyClick(&table, Qt::Key_Down, Qt::AltModifier);
  QTest::keyClick(&table, Qt::Key_Down, Qt::AltModifier);
  EXPECT_EQ(actionAt(2), "Cut");
  table.selectRow(1);
  QTest::keyClick(&table, Qt::Key_Space);
  EXPECT_EQ(actionAt(1), "Translate by Google") << "a locked switch stays";
}

TEST_F(PreferencesWindowTest, anEditorKeepsWhatIsTypedAndTheWholeOfALongTitle) {
  const std::string title(40000, 'x');
  PropertyList::Array rows = othersRows();
  rows[0].dictionaryIfDictionary()->insert_or_assign("displayName", title);
  rows[0].dictionaryIfDictionary()->insert_or_assign("nameModified", "1");
  standard_->setObject(rows, settings_key::arrOfOthers);
  auto& table = outlet<RuleTableView>("othersTableView");
  window().makeKeyAndOrderFront();
  outlet<SidebarButton>("otherOptionButton").click();
  table.selectRow(0);
  table.editTitle();
  auto* editor = table.findChild<QLineEdit*>();
  ASSERT_NE(editor, nullptr);
  EXPECT_EQ(editor->text().toStdString(), title);
  QTest::keyClicks(editor, QStringLiteral("mine"));
  system_.userDefaults.changeFromElsewhere("", settings_key::arrOfOthers, othersRows());
  system_.userDefaults.processChanges();
  EXPECT_EQ(editor->text(), QStringLiteral("mine"));
  QTest::keyClick(editor, Qt::Key_Return);
  EXPECT_TRUE(QTest::qWaitFor([&] {
    return settingsController_.rules().rows(RuleList::Others)[0].stringForKey("displayName") ==
           "mine";
  }));
}

TEST_F(PreferencesWindowTest, whatIsTypedIsStoredWhenTheWindowGoes) {
  auto& table = outlet<RuleTableView>("othersTableView");
  window().makeKeyAndOrderFront();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
  outlet<SidebarButton>("otherOptionButton").click();
  table.selectRow(0);
  table.editTitle();
  auto* editor = table.findChild<QLineEdit*>();
  ASSERT_NE(editor, nullptr);
  editor->setFocus();
  QTest::keyClicks(editor, QStringLiteral("mine"));
  window_.reset();
  EXPECT_EQ(standard_->arrayForKey(settings_key::arrOfOthers)[0].stringForKey("displayName"),
            "mine");
}

TEST_F(PreferencesWindowTest, toolTipsShowTextsAsTheyAre) {
  standard_->setObject(PropertyList::Array{PropertyList::Dictionary{
                           {"realPath", "/<img src='/x'>" + std::string(9999, 'y')}}},
                       settings_key::arrOfCopyFilesTo);
  const QString tip = outlet<RuleTableView>("copyFilesToTableView")
                          .model()
                          ->index(0, 3)
                          .data(Qt::ToolTipRole)
                          .toString();
  EXPECT_TRUE(tip.contains(QStringLiteral("&lt;img"))) << tip.toStdString();
  EXPECT_LT(tip.size(), 600);
}

/// The contrast of WCAG 2: from 1, the same colour, to 21, black on white.
double contrastRatio(const QColor& one, const QColor& other) {
  const auto luminance = [](const QColor& colour) {
    const auto linear = [](float part) {
      return part <= 0.04045F ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(colour.redF()) + 0.7152 * linear(colour.greenF()) +
           0.0722 * linear(colour.blueF());
  };
  const auto [low, high] = std::minmax({luminance(one), luminance(other)});
  return (high + 0.05) / (low + 0.05);
}

QColor over(const QColor& background, const QColor& text) {
  const auto part = [&](float back, float front) { return back + (front - back) * text.alphaF(); };
  return QColor::fromRgbF(part(background.redF(), text.redF()),
                          part(background.greenF(), text.greenF()),
                          part(background.blueF(), text.blueF()));
}

TEST(WindowPaletteTest, textsCanBeReadOnEveryBackground) {
  for (const QColor& background : {QColor(Qt::white), QColor::fromRgbF(0.11F, 0.12F, 0.13F)}) {
    for (const Contrast contrast : {Contrast::Normal, Contrast::More}) {
      const WindowPalette palette(background, QPalette(), contrast);
      const bool isMore = contrast == Contrast::More;
      const auto ratioOf = [&](const QPalette& colours) {
        return contrastRatio(background, over(background, colours.color(QPalette::WindowText)));
      };
      EXPECT_GE(ratioOf(palette.controls()), isMore ? 15 : 7);
      EXPECT_GE(ratioOf(palette.secondary()), isMore ? 15 : 4.5);
      EXPECT_GE(contrastRatio(background, palette.controls().color(QPalette::PlaceholderText)),
                isMore ? 15 : 4.5);
      const QColor frame = switchPalette(palette.controls()).color(QPalette::Window).darker(140);
      EXPECT_GE(contrastRatio(background, frame), 3) << "what Qt's own style draws around a switch";
    }
  }
}

TEST_F(PreferencesWindowTest, pagesHaveTheBackgroundThatIsAskedForAndFollowTheWishForContrast) {
  window().makeKeyAndOrderFront();
  window().setBackgroundColor(0.11, 0.12, 0.13);
  const QImage picture = window().grab().toImage();
  const QColor shown = picture.pixelColor(picture.width() - 3, 3);
  EXPECT_NEAR(shown.redF(), 0.11, 0.005);
  EXPECT_NEAR(shown.blueF(), 0.13, 0.005);
  standard_->setVolatileObject(true, system_defaults::increaseContrast);
  EXPECT_EQ(window().palette().color(QPalette::WindowText), QColor(Qt::white));
}

TEST_F(PreferencesWindowTest, oneEntryOfTheSidebarIsChosen) {
  auto& help = outlet<SidebarButton>("learnButton");
  help.click();
  int chosen = 0;
  for (const SidebarButton* button : window().findChildren<SidebarButton*>()) {
    if (button->layerBackground().alpha() == 0) continue;
    ++chosen;
    EXPECT_EQ(button, &help);
    EXPECT_NEAR(button->layerBackground().alphaF(), 0.4, 0.01);
  }
  EXPECT_EQ(chosen, 1);
}

}  // namespace
}  // namespace tavrin
