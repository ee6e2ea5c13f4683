#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include "settings/window/FileManagersDialog.h"
#include "tests/support/FakePlatform.h"

namespace tavrin {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;
using State = ExtensionHost::State;

class FileManagersDialogTest : public testing::Test {
 protected:
  FileManagersDialogTest() {
    controller_.installed = {{"nemo", "Files & Folders (Nemo)", State::On},
                             {"caja", "Caja", State::Off},
                             {"dolphin", "Dolphin", State::Missing}};
  }

  FileManagersDialog& dialog() {
    if (!dialog_) {
      const WindowPalette palette(Qt::white, {}, Contrast::Normal);
      dialog_ = std::make_unique<FileManagersDialog>(system_.platform, settings_, palette, nullptr);
    }
    return *dialog_;
  }
  QList<QCheckBox*> boxes() { return dialog().findChildren<QCheckBox*>(); }
  /// What each row says: its switch, its name and its state.
  std::vector<std::string> rows() {
    std::vector<std::string> rows;
    for (const QCheckBox* box : boxes()) {
      const std::string state = box->isEnabled() ? (box->isChecked() ? "+" : "-") : "x";
      rows.push_back(state + " " + box->accessibleName().toStdString() + ": " +
                     box->accessibleDescription().toStdString());
    }
    return rows;
  }
  std::vector<std::string> texts() {
    std::vector<std::string> texts;
    for (const QLabel* label : dialog().findChildren<QLabel*>()) {
      if (!label->isHidden()) texts.push_back(label->text().toStdString());
    }
    return texts;
  }
  QPushButton& button(const char* text) {
    for (QPushButton* each : dialog().findChildren<QPushButton*>()) {
      if (each->text() == QLatin1String(text)) return *each;
    }
    throw std::runtime_error(text);
  }

  FakePlatform system_;
  FakeExtensionController& controller_ = system_.extensionController;
  std::unique_ptr<UserDefaults> standard_ = system_.userDefaults.standardUserDefaults();
  DefaultSettings defaults_;
  WorkingLists lists_{*standard_};
  SettingsController settings_{system_.platform, *standard_, lists_, defaults_};
  std::unique_ptr<FileManagersDialog> dialog_;
};

TEST_F(FileManagersDialogTest, saysTheStateOfEachFileManager) {
  EXPECT_THAT(rows(),
              ElementsAre("+ Files & Folders (Nemo): The menu is on", "- Caja: The menu is off",
                          "x Dolphin: The menu is not installed"));
  EXPECT_EQ(boxes().front()->text(), QStringLiteral("Files && Folders (Nemo)"));
  for (const char* state : {"The menu is on", "The menu is off", "The menu is not installed"}) {
    EXPECT_THAT(texts(), Contains(state));
  }
}

TEST_F(FileManagersDialogTest, showsASwitchAsItIsAndNotAsItWasToBe) {
  boxes()[1]->click();
  EXPECT_EQ(controller_.installed[1].state, State::On);
  EXPECT_EQ(rows()[1], "+ Caja: The menu is on");
  controller_.refusing = "caja";
  boxes()[1]->click();
  EXPECT_EQ(rows()[1], "+ Caja: The menu is on");
  boxes()[2]->click();
  EXPECT_EQ(controller_.installed[2].state, State::Missing);
}

TEST_F(FileManagersDialogTest, followsWhatChangesElsewhere) {
  const QCheckBox* first = boxes().front();
  controller_.installed[0].state = State::Off;
  controller_.changed();
  EXPECT_EQ(rows()[0], "- Files & Folders (Nemo): The menu is off");
  EXPECT_EQ(boxes().front(), first) << "which may have the keyboard";
  controller_.installed = {{"thunar", "Thunar", State::On}};
  dialog().show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog()));
  EXPECT_THAT(rows(), ElementsAre("+ Thunar: The menu is on"));
}

TEST_F(FileManagersDialogTest, saysThatNoneIsInstalled) {
  EXPECT_TRUE(button("Restart File Manager").isEnabled());
  controller_.installed.clear();
  controller_.changed();
  EXPECT_THAT(rows(), ElementsAre());
  EXPECT_THAT(texts(), Contains(testing::HasSubstr("None of them is installed")));
  EXPECT_THAT(texts(), Not(Contains(testing::HasSubstr("restarted"))));
  EXPECT_FALSE(button("Restart File Manager").isEnabled());
}

TEST_F(FileManagersDialogTest, restartsFileManagersAndReturnClosesIt) {
  dialog().show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&dialog()));
  button("Restart File Manager").click();
  EXPECT_EQ(system_.workspace.fileViewerRestarts, 1);
  EXPECT_TRUE(dialog().isVisible());
  boxes().front()->setFocus();
  QTest::keyClick(boxes().front(), Qt::Key_Return);
  EXPECT_FALSE(dialog().isVisible());
  EXPECT_EQ(system_.workspace.fileViewerRestarts, 1);
}

TEST_F(FileManagersDialogTest, takesTheColoursOfTheWindow) {
  const auto contrast = [this] {
    const QPalette palette = boxes().front()->palette();
    const int text = palette.color(QPalette::WindowText).lightness();
    return text - dialog().palette().color(QPalette::Window).lightness();
  };
  EXPECT_LT(contrast(), -200);
  dialog().setColours({QColor(0x20, 0x20, 0x20), {}, Contrast::More});
  EXPECT_GT(contrast(), 200);
  controller_.installed.pop_back();
  controller_.changed();
  EXPECT_GT(contrast(), 200) << "rows that were made anew";
}

}  // namespace
}  // namespace tavrin
