#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QTreeView>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/QtWindows.h"
#include "platform/linux/panel/LinuxOpenPanel.h"
#include "tests/platform/desktop/DesktopSession.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(SaveNameTest, givesANameItsTypeOnce) {
  const SaveName markdown({"md", "markdown"}, SaveName::OtherTypes::Refused);
  const std::vector<std::vector<std::string>> cases = {{"notes", "notes.md"},
                                                       {"notes.txt", "notes.txt.md"},
                                                       {"notes.md", "notes.md"},
                                                       {"notes.MD", "notes.md"},
                                                       {"a.markdown", "a.markdown"},
                                                       {".md", ".md.md"},
                                                       {"notes.", "notes..md"},
                                                       {"md", "md.md"},
                                                       {"", ""},
                                                       {"  ", "  "},
                                                       {"a b.tar.gz", "a b.tar.gz.md"},
                                                       {"\xff.md", "\xff.md"}};
  for (const auto& row : cases) EXPECT_EQ(markdown.finished(row[0]), row[1]) << row[0];
  const SaveName any({}, SaveName::OtherTypes::Refused);
  EXPECT_EQ(any.finished("Makefile"), "Makefile");
  const SaveName lenient({"md"}, SaveName::OtherTypes::Allowed);
  EXPECT_EQ(lenient.finished("notes.txt"), "notes.txt");
  EXPECT_EQ(lenient.finished("notes"), "notes.md");
  EXPECT_EQ(SaveName({"tar.gz"}, SaveName::OtherTypes::Refused).finished("a.tar.gz"), "a.tar.gz");
}

TEST(SaveNameTest, tellsNamesThatNoFileCanHave) {
  using Problem = SaveName::Problem;
  for (const char* name : {"", " ", "\t"}) EXPECT_EQ(SaveName::problem(name), Problem::Empty);
  for (const char* name : {"/", "a/b", "../a"}) {
    EXPECT_EQ(SaveName::problem(name), Problem::Separator);
  }
  EXPECT_EQ(SaveName::problem(std::string("a\0b", 3)), Problem::Separator);
  for (const char* name : {".", ".."}) EXPECT_EQ(SaveName::problem(name), Problem::Reserved);
  EXPECT_EQ(SaveName::problem(std::string(256, 'x')), Problem::TooLong);
  EXPECT_EQ(SaveName::problem(std::string(255, 'x')), std::nullopt);
  EXPECT_EQ(SaveName::problem("-rf \n\xff"), std::nullopt);
}

/// A save panel over a small tree:  inner/, folder.md/, old.md, report.txt.
class SavePanelTest : public testing::Test {
 protected:
  SavePanelTest() {
    for (const char* name : {"inner", "folder.md"}) {
      EXPECT_EQ(::mkdir((folder_ / name).c_str(), 0755), 0);
    }
    test::writeFile(folder_ / "old.md", "old");
    test::writeFile(folder_ / "report.txt", "report");
    options_.directory = FileURL::fileURLWithPath(folder_.path());
    options_.name = "untitled";
    options_.types = {"txt"};
  }

  void showPanel() {
    dialog_ = std::make_unique<SavePanelDialog>(options_);
    dialog_->show();
    dialog_->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(dialog_.get()));
  }

  template <typename Widget>
  Widget& child(const char* name) const {
    auto* widget = dialog_->findChild<Widget*>(QString::fromLatin1(name));
    EXPECT_NE(widget, nullptr) << name;
    return *widget;
  }
  QLineEdit& edit() const { return child<QLineEdit>("nameEdit"); }
  std::string name() const { return edit().text().toStdString(); }
  std::string hint() const { return child<QLabel>("hintText").text().toStdString(); }
  bool canSave() const { return child<QPushButton>("saveButton").isEnabled(); }
  void save() const { QTest::mouseClick(&child<QPushButton>("saveButton"), Qt::LeftButton); }
  void type(const std::string& text) const {
    edit().setFocus();
    edit().selectAll();
    QTest::keyClick(&edit(), Qt::Key_Backspace);
    QTest::keyClicks(&edit(), QString::fromStdString(text));
  }
  QTreeView& list() const { return child<QTreeView>("fileList"); }
  void select(const std::string& item) const {
    const auto& model = dynamic_cast<const FolderListModel&>(*list().model());
    const QModelIndex index = model.index(model.rowOfName(item).value(), 0);
    QTest::mouseClick(list().viewport(), Qt::LeftButton, Qt::NoModifier,
                      list().visualRect(index).center());
  }

  /// Presses a button of the question that comes up next, and keeps what it said.
  void answer(const char* button) {
    QTimer::singleShot(0, dialog_.get(), [this, button] {
      auto* box = dialog_->findChild<QDialog*>(QStringLiteral("replaceQuestion"));
      ASSERT_NE(box, nullptr);
      question_ = box->findChild<QLabel*>(QStringLiteral("qt_msgbox_label"))->text().toStdString();
      for (auto* pushButton : box->findChildren<QPushButton*>()) {
        if (pushButton->text() == QLatin1String(button)) {
          QTest::mouseClick(pushButton, Qt::LeftButton);
        }
      }
    });
  }

  std::string picked() const {
    return dialog_->picked() ? dialog_->picked()->url.path() : "(none)";
  }

  test::TemporaryFolder folder_;
  SavePanelOptions options_;
  std::unique_ptr<SavePanelDialog> dialog_;
  std::string question_;
};

TEST_F(SavePanelTest, proposesANameSelectedUpToItsExtensionAndReturnSaves) {
  showPanel();
  EXPECT_EQ(name(), "untitled.txt");
  EXPECT_EQ(edit().selectedText(), QStringLiteral("untitled"));
  QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("notes"));
  EXPECT_EQ(name(), "notes.txt");
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  EXPECT_EQ(dialog_->result(), QDialog::Accepted);
  EXPECT_EQ(picked(), folder_ / "notes.txt");
  EXPECT_EQ(dialog_->picked()->place.folder->path(), folder_.path());
  EXPECT_EQ(dialog_->picked()->place.name, "notes.txt");
  EXPECT_FALSE(dialog_->picked()->replaces);
}

TEST_F(SavePanelTest, addsTheExtensionThatIsMissingAndSaysSo) {
  showPanel();
  type("notes.html");
  EXPECT_THAT(hint(), HasSubstr("notes.html.txt"));
  type("notes.TXT");
  EXPECT_THAT(hint(), HasSubstr("notes.txt"));
  type("notes.txt");
  EXPECT_EQ(hint(), "");
  type("notes");
  save();
  EXPECT_EQ(picked(), folder_ / "notes.txt");
}

TEST_F(SavePanelTest, cannotBeConfirmedWithANameThatNoFileCanHave) {
  showPanel();
  for (const std::string& bad :
       {std::string(), std::string("  "), std::string("a/b"), std::string(252, 'x')}) {
    type(bad);
    EXPECT_FALSE(canSave()) << bad;
    EXPECT_EQ(hint().empty(), bad.find_first_not_of(' ') == bad.npos) << bad;
    QTest::keyClick(&edit(), Qt::Key_Return);
    save();
    EXPECT_TRUE(dialog_->isVisible()) << bad;
  }
  type(std::string(251, 'x'));
  save();
  EXPECT_EQ(picked(), folder_ / (std::string(251, 'x') + ".txt"));
}

TEST_F(SavePanelTest, asksBeforeItReplaces) {
  showPanel();
  type("report");
  answer("Cancel");
  save();
  EXPECT_THAT(question_, HasSubstr("report.txt"));
  EXPECT_TRUE(dialog_->isVisible());
  EXPECT_EQ(picked(), "(none)");
  EXPECT_EQ(test::readFile(folder_ / "report.txt"), "report");
  answer("Replace");
  QTest::keyClick(&edit(), Qt::Key_Return);
  EXPECT_EQ(picked(), folder_ / "report.txt");
  EXPECT_TRUE(dialog_->picked()->replaces);
  EXPECT_EQ(test::readFile(folder_ / "report.txt"), "report") << "that is its caller's to do";
}

TEST_F(SavePanelTest, aFolderIsNeverReplaced) {
  options_.types = {"md"};
  showPanel();
  type("folder");
  EXPECT_FALSE(canSave());
  EXPECT_THAT(hint(), HasSubstr("folder.md"));
  type("later");
  ASSERT_EQ(::mkdir((folder_ / "later.md").c_str(), 0755), 0);
  save();
  EXPECT_TRUE(dialog_->isVisible());
  EXPECT_FALSE(canSave());
  EXPECT_THAT(hint(), HasSubstr("later.md"));
  ASSERT_EQ(::symlink("nowhere", (folder_ / "dangling.md").c_str()), 0);
  type("dangling");
  answer("Replace");
  save();
  EXPECT_EQ(picked(), folder_ / "dangling.md");
}

TEST_F(SavePanelTest, aClickedFileGivesItsName) {
  test::writeFile(folder_ / "no utf8 \xff.txt", "x");
  showPanel();
  select("old.md");
  EXPECT_EQ(name(), "old.txt");
  select("inner");
  EXPECT_EQ(name(), "old.txt") << "a folder's name is no file's";
  select("no utf8 \xff.txt");
  answer("Replace");
  save();
  EXPECT_EQ(picked(), folder_ / "no utf8 \xff.txt");
}

TEST_F(SavePanelTest, goesThroughFoldersAndKeepsTheName) {
  options_.directory = FileURL::fileURLWithPath(folder_ / "inner/gone/too");
  showPanel();
  type("kept");
  QTest::keyClick(&edit(), Qt::Key_Up, Qt::AltModifier);
  select("inner");
  QTest::keyClick(&list(), Qt::Key_Return);
  EXPECT_EQ(name(), "kept");
  EXPECT_TRUE(dialog_->isVisible());
  QTest::keyClick(&list(), Qt::Key_Return);
  EXPECT_EQ(picked(), folder_ / "inner/kept.txt");
}

TEST_F(SavePanelTest, savesIntoNoFolderThatWasReplacedWhileItWasShown) {
  showPanel();
  select("inner");
  QTest::keyClick(&list(), Qt::Key_Return);
  ASSERT_EQ(::rename((folder_ / "inner").c_str(), (folder_ / "moved").c_str()), 0);
  ASSERT_EQ(::symlink("folder.md", (folder_ / "inner").c_str()), 0);
  save();
  EXPECT_TRUE(dialog_->isVisible());
  EXPECT_THAT(hint(), HasSubstr("replaced"));
  save();
  EXPECT_EQ(dialog_->picked()->place.folder->path(), folder_ / "folder.md");
}

TEST_F(SavePanelTest, everyControlHasANameForScreenReaders) {
  options_.accessory = PopUpAccessory{"Format:", {"txt", "md"}, {}};
  showPanel();
  EXPECT_EQ(child<QComboBox>("accessoryPopUp").accessibleName(), QStringLiteral("Format"));
  for (const QWidget* widget : dialog_->findChildren<QWidget*>()) {
    const bool isPart = widget->objectName().startsWith(u"qt_") ||
                        widget->parentWidget() == &child<QComboBox>("accessoryPopUp");
    if (widget->focusPolicy() == Qt::NoFocus || isPart) continue;
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    const QString text =
        button != nullptr && !button->text().isEmpty() ? button->text() : widget->accessibleName();
    EXPECT_FALSE(text.isEmpty()) << widget->metaObject()->className() << " "
                                 << widget->objectName().toStdString();
  }
}

/// The panel as its caller knows it.
class LinuxSavePanelTest : public testing::Test {
 protected:
  LinuxSavePanelTest() {
    panel_->setDirectoryURL(FileURL::fileURLWithPath(folder_.path()));
    panel_->setNameFieldStringValue("untitled");
    panel_->setAllowedFileTypes({"txt"});
    panel_->setAccessoryView({"Format:", {"txt", "md"}, [this](std::size_t index) {
                                panel_->setAllowedFileTypes({index == 0 ? "txt" : "md"});
                                panel_->validateVisibleColumns();
                              }});
  }

  /// Runs the panel with what the user does in it.
  SavePanel::Response run(const std::function<void(SavePanelDialog& dialog)>& user) {
    QTimer::singleShot(0, qApp, [user] {
      user(dynamic_cast<SavePanelDialog&>(*QApplication::activeModalWidget()));
    });
    return panel_->runModal();
  }
  static QLineEdit& edit(const QDialog& dialog) {
    return *dialog.findChild<QLineEdit*>(QStringLiteral("nameEdit"));
  }

  test::TemporaryFolder folder_;
  std::vector<std::string> granted_;
  LinuxPanelProvider provider_{{}, [this](const PickedPlace& place) {
                                 granted_.push_back(place.folder->path() + "|" + place.name);
                               }};
  std::shared_ptr<SavePanel> panel_ = provider_.savePanel();
};

TEST_F(LinuxSavePanelTest, thePopUpChangesTheExtensionAndTheGrantIsThePlaceAlone) {
  const auto response = run([](SavePanelDialog& dialog) {
    auto* popUp = dialog.findChild<QComboBox*>(QStringLiteral("accessoryPopUp"));
    QTest::keyClick(popUp, Qt::Key_Down);
    EXPECT_EQ(edit(dialog).text(), QStringLiteral("untitled.md"));
    edit(dialog).setFocus();
    QTest::keyClicks(&edit(dialog), QStringLiteral("notes"));
    EXPECT_EQ(edit(dialog).text(), QStringLiteral("notes.md"));
    QTest::keyClick(popUp, Qt::Key_Up);
    EXPECT_EQ(edit(dialog).text(), QStringLiteral("notes.txt"));
    QTest::keyClick(popUp, Qt::Key_Down);
    QTest::keyClick(&edit(dialog), Qt::Key_Return);
  });
  EXPECT_EQ(response, SavePanel::Response::OK);
  EXPECT_EQ(panel_->url()->path(), folder_ / "notes.md");
  EXPECT_FALSE(panel_->mayReplace());
  EXPECT_THAT(granted_, ElementsAre(folder_.path() + "|notes.md"));
}

TEST_F(LinuxSavePanelTest, cancelledItHasNoUrlAndGrantsNothing) {
  const auto response =
      run([](SavePanelDialog& dialog) { QTest::keyClick(&dialog, Qt::Key_Escape); });
  EXPECT_EQ(response, SavePanel::Response::Cancel);
  EXPECT_EQ(panel_->url(), std::nullopt);
  EXPECT_THAT(granted_, IsEmpty());
}

TEST_F(LinuxSavePanelTest, isCancelledAtOnceWhileTheProgramEnds) {
  stopAskingTheUser();
  EXPECT_EQ(panel_->runModal(), SavePanel::Response::Cancel);
  qApp->setProperty("tavrinIsEnding", QVariant());
  EXPECT_TRUE(mayAskTheUser());
}

TEST_F(LinuxSavePanelTest, endsWithTheProgramEvenWhileItAsks) {
  test::writeFile(folder_ / "untitled.txt", "");
  const auto response = run([](SavePanelDialog& dialog) {
    QTimer::singleShot(0, &dialog, [&dialog] {
      EXPECT_NE(dialog.findChild<QDialog*>(QStringLiteral("replaceQuestion")), nullptr);
      // What quitting tells before it ends.
      QMetaObject::invokeMethod(qApp, "aboutToQuit");
    });
    QTest::keyClick(&edit(dialog), Qt::Key_Return);
  });
  EXPECT_EQ(response, SavePanel::Response::Cancel);
  EXPECT_THAT(granted_, IsEmpty());
}

}  // namespace
}  // namespace tavrin
