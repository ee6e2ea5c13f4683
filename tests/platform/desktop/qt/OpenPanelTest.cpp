#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <QToolButton>
#include <QTreeView>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/panel/LinuxOpenPanel.h"
#include "sandbox/AppSandboxFileAccessOpenSavePanelDelegate.h"
#include "tests/platform/desktop/DesktopSession.h"

namespace tavrin {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

/// A panel over a small tree:  wanted/inner/deep, other/, file, other file.
class OpenPanelTest : public testing::Test {
 protected:
  OpenPanelTest() {
    for (const char* name : {"wanted", "wanted/inner", "wanted/inner/deep", "other"}) {
      EXPECT_EQ(::mkdir((folder_ / name).c_str(), 0755), 0);
    }
    test::writeFile(folder_ / "file", "x");
    test::writeFile(folder_ / "other file", "x");
    options_.rules = {true, true, nullptr};
    options_.directory = FileURL::fileURLWithPath(folder_.path());
  }

  /// Only the item at this place in the tree and its ancestors can be picked.
  void allowOnly(const std::string& name) {
    delegate_.emplace(FileURL::fileURLWithPath(folder_ / name));
    options_.rules.delegate = &*delegate_;
  }

  void showPanel() {
    dialog_ = std::make_unique<OpenPanelDialog>(options_, nullptr);
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
  QTreeView& list() const { return child<QTreeView>("fileList"); }
  QPushButton& promptButton() const { return child<QPushButton>("promptButton"); }
  std::string location() const { return child<QLineEdit>("locationEdit").text().toStdString(); }

  std::string shownFolder() const { return model().folder().path(); }
  const FolderListModel& model() const {
    return dynamic_cast<const FolderListModel&>(*list().model());
  }

  QPoint placeOf(const std::string& name) const {
    const QModelIndex index = model().index(model().rowOfName(name).value(), 0);
    return list().visualRect(index).center();
  }
  void click(const std::string& name, Qt::KeyboardModifiers keys = Qt::NoModifier) const {
    QTest::mouseClick(list().viewport(), Qt::LeftButton, keys, placeOf(name));
  }
  void doubleClick(const std::string& name) const {
    click(name);
    QTest::mouseDClick(list().viewport(), Qt::LeftButton, Qt::NoModifier, placeOf(name));
  }
  void press(Qt::Key key, Qt::KeyboardModifiers keys = Qt::NoModifier) const {
    QTest::keyClick(QApplication::focusWidget(), key, keys);
  }
  void type(const std::string& path) const {
    auto& edit = child<QLineEdit>("locationEdit");
    edit.setFocus();
    edit.selectAll();
    QTest::keyClicks(&edit, QString::fromStdString(path));
  }

  std::vector<std::string> picked() const {
    std::vector<std::string> paths;
    for (const PickedItem& item : dialog_->picked()) paths.push_back(item.url.path());
    return paths;
  }
  bool isOpen() const { return dialog_->isVisible(); }

  test::TemporaryFolder folder_;
  PanelOptions options_;
  std::optional<AppSandboxFileAccessOpenSavePanelDelegate> delegate_;
  std::unique_ptr<OpenPanelDialog> dialog_;
};

TEST_F(OpenPanelTest, returnWithNothingSelectedPicksTheFolderShown) {
  showPanel();
  press(Qt::Key_Return);
  EXPECT_EQ(dialog_->result(), QDialog::Accepted);
  EXPECT_THAT(picked(), ElementsAre(folder_.path()));
}

TEST_F(OpenPanelTest, confirmsNothingInAFolderThatTheRulesRefuse) {
  allowOnly("wanted");
  options_.directory = FileURL::fileURLWithPath(folder_ / "other");
  showPanel();
  EXPECT_FALSE(promptButton().isEnabled());
  press(Qt::Key_Return);
  EXPECT_TRUE(isOpen());
  EXPECT_THAT(picked(), IsEmpty());
}

TEST_F(OpenPanelTest, confirmButtonPicksTheSelectedFolderAndReturnGoesIntoIt) {
  showPanel();
  click("wanted");
  EXPECT_EQ(location(), folder_ / "wanted");
  press(Qt::Key_Return);
  EXPECT_EQ(shownFolder(), folder_ / "wanted");
  click("inner");
  QTest::mouseClick(&promptButton(), Qt::LeftButton);
  EXPECT_THAT(picked(), ElementsAre(folder_ / "wanted/inner"));
}

TEST_F(OpenPanelTest, filesOfOtherTypesCannotBePickedAndFoldersStayOpen) {
  for (const char* name : {"wanted/icon.PNG", "wanted/notes.txt", "wanted/png"}) {
    test::writeFile(folder_ / name, "x");
  }
  options_.rules = {true, false, nullptr, {"tiff", "png"}};
  showPanel();
  doubleClick("wanted");
  EXPECT_EQ(shownFolder(), folder_ / "wanted");
  for (const char* name : {"notes.txt", "png"}) {
    doubleClick(name);
    EXPECT_FALSE(list().selectionModel()->hasSelection()) << name;
    type(folder_ / "wanted/" + name);
    EXPECT_FALSE(promptButton().isEnabled()) << name;
  }
  doubleClick("icon.PNG");
  EXPECT_FALSE(isOpen());
  EXPECT_THAT(picked(), ElementsAre(folder_ / "wanted/icon.PNG"));
}

TEST_F(OpenPanelTest, refusedRowsCannotBeSelectedOrEnteredByMouse) {
  allowOnly("wanted");
  showPanel();
  doubleClick("other");
  doubleClick("file");
  EXPECT_EQ(shownFolder(), folder_.path());
  EXPECT_FALSE(list().selectionModel()->hasSelection());
  EXPECT_TRUE(isOpen());
  doubleClick("wanted");
  EXPECT_EQ(shownFolder(), folder_ / "wanted");
  EXPECT_TRUE(promptButton().isEnabled());
  doubleClick("inner");
  EXPECT_EQ(shownFolder(), folder_ / "wanted");
}

TEST_F(OpenPanelTest, refusedRowsCannotBeSelectedByKeyboard) {
  allowOnly("wanted");
  options_.allowsMultipleSelection = true;
  showPanel();
  list().setFocus();
  for (int repeat = 0; repeat < 6; ++repeat) press(Qt::Key_Down);
  press(Qt::Key_End);
  press(Qt::Key_Up, Qt::ShiftModifier);
  QTest::keyClicks(&list(), QStringLiteral("other"));
  press(Qt::Key_Space);
  press(Qt::Key_A, Qt::ControlModifier);
  QTest::mouseClick(&promptButton(), Qt::LeftButton);
  EXPECT_THAT(picked(), testing::Each(testing::AnyOf(folder_ / "wanted", folder_.path())));
  EXPECT_THAT(picked(), testing::SizeIs(1));
}

TEST_F(OpenPanelTest, folderChooserGreysFilesAndGoesThroughFolders) {
  options_.rules.canChooseFiles = false;
  showPanel();
  doubleClick("file");
  EXPECT_TRUE(isOpen());
  type(folder_ / "file");
  EXPECT_FALSE(promptButton().isEnabled());
  press(Qt::Key_Return);
  EXPECT_TRUE(isOpen());
  doubleClick("other");
  press(Qt::Key_Return);
  EXPECT_THAT(picked(), ElementsAre(folder_ / "other"));
}

TEST_F(OpenPanelTest, filePanelGoesIntoFoldersButPicksFilesOnly) {
  options_.rules.canChooseDirectories = false;
  showPanel();
  EXPECT_FALSE(promptButton().isEnabled());
  click("other");
  EXPECT_FALSE(promptButton().isEnabled());
  press(Qt::Key_Return);
  EXPECT_EQ(shownFolder(), folder_ / "other");
  press(Qt::Key_Up, Qt::AltModifier);
  doubleClick("file");
  EXPECT_THAT(picked(), ElementsAre(folder_ / "file"));
}

TEST_F(OpenPanelTest, typedPathsAreJudgedLikeRows) {
  allowOnly("wanted");
  showPanel();
  for (const char* refused :
       {"other", "wanted/inner", "wanted/../file", "wanted/missing", "/etc"}) {
    type(refused[0] == '/' ? refused : folder_ / refused);
    EXPECT_FALSE(promptButton().isEnabled()) << refused;
    EXPECT_FALSE(child<QLabel>("problemText").text().isEmpty()) << refused;
    press(Qt::Key_Return);
    EXPECT_EQ(shownFolder(), folder_.path()) << refused;
    EXPECT_TRUE(isOpen()) << refused;
  }
  type("wanted");
  EXPECT_TRUE(promptButton().isEnabled());
  press(Qt::Key_Return);
  EXPECT_EQ(shownFolder(), folder_ / "wanted");
  EXPECT_TRUE(isOpen());
  press(Qt::Key_Return);
  EXPECT_THAT(picked(), ElementsAre(folder_ / "wanted"));
}

TEST_F(OpenPanelTest, aSlashInTheListBeginsATypedPathThatTheButtonPicks) {
  showPanel();
  list().setFocus();
  QTest::keyClicks(&list(), QStringLiteral("/"));
  QTest::keyClicks(QApplication::focusWidget(), QStringLiteral("usr"));
  EXPECT_EQ(location(), "/usr");
  QTest::mouseClick(&promptButton(), Qt::LeftButton);
  EXPECT_THAT(picked(), ElementsAre("/usr"));
}

TEST_F(OpenPanelTest, aLinkIsJudgedByItsOwnPath) {
  ASSERT_EQ(::symlink("wanted", (folder_ / "link").c_str()), 0);
  allowOnly("wanted");
  showPanel();
  doubleClick("link");
  type(folder_ / "link");
  press(Qt::Key_Return);
  EXPECT_EQ(shownFolder(), folder_.path());
  EXPECT_FALSE(promptButton().isEnabled());
}

TEST_F(OpenPanelTest, picksNothingThatWasReplacedWhileItWasShown) {
  allowOnly("wanted");
  options_.directory = FileURL::fileURLWithPath(folder_ / "wanted");
  const auto replaceByLink = [&] {
    ASSERT_EQ(::rename((folder_ / "wanted").c_str(), (folder_ / "moved").c_str()), 0);
    ASSERT_EQ(::symlink("other", (folder_ / "wanted").c_str()), 0);
  };
  const auto putBack = [&] {
    ASSERT_EQ(::unlink((folder_ / "wanted").c_str()), 0);
    ASSERT_EQ(::rename((folder_ / "moved").c_str(), (folder_ / "wanted").c_str()), 0);
  };
  showPanel();
  replaceByLink();
  for (int repeat = 0; repeat < 2; ++repeat) {
    press(Qt::Key_Return);
    EXPECT_TRUE(isOpen());
    EXPECT_THAT(picked(), IsEmpty());
    EXPECT_FALSE(child<QLabel>("problemText").text().isEmpty());
  }
  putBack();
  press(Qt::Key_Return);
  EXPECT_TRUE(isOpen()) << "not shown again yet";
  press(Qt::Key_Return);
  EXPECT_THAT(picked(), ElementsAre(folder_ / "wanted"));

  options_.directory = FileURL::fileURLWithPath(folder_.path());
  showPanel();
  click("wanted");
  replaceByLink();
  QTest::mouseClick(&promptButton(), Qt::LeftButton);
  EXPECT_TRUE(isOpen());
  type(folder_ / "wanted");
  QTest::mouseClick(&promptButton(), Qt::LeftButton);
  EXPECT_TRUE(isOpen());
  EXPECT_EQ(location(), folder_ / "wanted");
  putBack();
}

TEST_F(OpenPanelTest, aReplacedFileIsPickedOnceItIsShown) {
  showPanel();
  click("file");
  QTest::qWait(50);
  test::writeFile(folder_ / "new", "another");
  ASSERT_EQ(::rename((folder_ / "new").c_str(), (folder_ / "file").c_str()), 0);
  press(Qt::Key_Return);
  EXPECT_TRUE(isOpen());
  EXPECT_EQ(location(), folder_ / "file");
  press(Qt::Key_Return);
  EXPECT_THAT(picked(), ElementsAre(folder_ / "file"));
}

TEST_F(OpenPanelTest, theChooserTakesWhereALinkLedWhenItWasShown) {
  ASSERT_EQ(::symlink("wanted", (folder_ / "link").c_str()), 0);
  showPanel();
  doubleClick("link");
  EXPECT_EQ(shownFolder(), folder_ / "link");
  click("inner");
  QTest::mouseClick(&promptButton(), Qt::LeftButton);
  EXPECT_THAT(picked(), ElementsAre(folder_ / "link/inner"));
  EXPECT_EQ(dialog_->picked().at(0).item->path(), folder_ / "wanted/inner");

  options_.directory = FileURL::fileURLWithPath(folder_ / "link");
  showPanel();
  ASSERT_EQ(::unlink((folder_ / "link").c_str()), 0);
  ASSERT_EQ(::symlink("other", (folder_ / "link").c_str()), 0);
  press(Qt::Key_Return);
  EXPECT_TRUE(isOpen());
  press(Qt::Key_Return);
  EXPECT_EQ(dialog_->picked().at(0).item->path(), folder_ / "other");
}

TEST_F(OpenPanelTest, aLinkToAFileIsPickedByItsOwnNameAndGrantsWhatItLeadsTo) {
  ASSERT_EQ(::symlink("wanted/deep link", (folder_ / "link").c_str()), 0);
  ASSERT_EQ(::symlink("../file", (folder_ / "wanted/deep link").c_str()), 0);
  options_.rules = {true, false, nullptr};
  showPanel();
  click("link");
  press(Qt::Key_Return);
  EXPECT_THAT(picked(), ElementsAre(folder_ / "link"));
  EXPECT_EQ(dialog_->picked().at(0).item->path(), folder_ / "file");
}

TEST_F(OpenPanelTest, theWayUpPicksTheParentAndStopsAtTheRoot) {
  allowOnly("wanted/inner/deep");
  options_.directory = FileURL::fileURLWithPath(folder_ / "wanted/inner/deep");
  showPanel();
  press(Qt::Key_Up, Qt::AltModifier);
  QTest::mouseClick(&child<QToolButton>("upButton"), Qt::LeftButton);
  EXPECT_EQ(shownFolder(), folder_ / "wanted");
  EXPECT_FALSE(list().selectionModel()->hasSelection());
  for (int repeat = 0; repeat < 20; ++repeat) press(Qt::Key_Up, Qt::AltModifier);
  EXPECT_EQ(shownFolder(), "/");
  EXPECT_FALSE(child<QToolButton>("upButton").isEnabled());
  QTest::mouseClick(&promptButton(), Qt::LeftButton);
  EXPECT_THAT(picked(), ElementsAre("/"));
}

TEST_F(OpenPanelTest, theDirectoryOfAFileShowsItSelectedIfTheRulesAllowIt) {
  test::writeFile(folder_ / ".secret\xff", "x");
  options_.directory = FileURL::fileURLWithPath(folder_ / ".secret\xff");
  showPanel();
  QTest::mouseClick(&promptButton(), Qt::LeftButton);
  EXPECT_THAT(picked(), ElementsAre(folder_ / ".secret\xff"));

  allowOnly("other");
  options_.directory = FileURL::fileURLWithPath(folder_ / "file");
  showPanel();
  EXPECT_FALSE(list().selectionModel()->hasSelection());
  QTest::mouseClick(&promptButton(), Qt::LeftButton);
  EXPECT_THAT(picked(), ElementsAre(folder_.path()));
}

TEST_F(OpenPanelTest, picksSeveralOnlyWhereAllowed) {
  showPanel();
  click("file");
  click("other file", Qt::ControlModifier);
  QTest::mouseClick(&promptButton(), Qt::LeftButton);
  EXPECT_THAT(picked(), ElementsAre(folder_ / "other file"));

  options_.allowsMultipleSelection = true;
  showPanel();
  click("file");
  click("other file", Qt::ControlModifier);
  press(Qt::Key_Return);
  EXPECT_THAT(picked(), UnorderedElementsAre(folder_ / "file", folder_ / "other file"));
}

TEST_F(OpenPanelTest, placesOutsideTheRulesAreGreyedAndTheRootIsOffered) {
  allowOnly("wanted");
  showPanel();
  auto& places = child<QListWidget>("places");
  for (int row = 0; row < places.count(); ++row) {
    const QListWidgetItem& item = *places.item(row);
    const std::string path = item.data(Qt::UserRole).toByteArray().toStdString();
    EXPECT_EQ(item.flags().testFlag(Qt::ItemIsEnabled),
              delegate_->panelShouldEnableURL(FileURL::fileURLWithPath(path)))
        << path;
    if (path != "/") continue;
    places.setFocus();
    places.setCurrentRow(row);
    press(Qt::Key_Return);
  }
  EXPECT_EQ(shownFolder(), "/");
  EXPECT_TRUE(isOpen());
}

TEST_F(OpenPanelTest, showsTheTextAtItsFullWording) {
  options_.accessoryText = QStringLiteral("\n1. <b>First</b> & more.\n2. Second.\n");
  showPanel();
  const auto& label = child<QLabel>("accessoryText");
  EXPECT_EQ(label.text(), options_.accessoryText);
  EXPECT_EQ(label.textFormat(), Qt::PlainText);
  EXPECT_LE(label.width(), 800);
}

TEST_F(OpenPanelTest, everyControlHasANameForScreenReaders) {
  showPanel();
  for (const QWidget* widget : dialog_->findChildren<QWidget*>()) {
    if (widget->focusPolicy() == Qt::NoFocus || widget->objectName().startsWith(u"qt_")) continue;
    const auto* button = qobject_cast<const QAbstractButton*>(widget);
    const QString name =
        button != nullptr && !button->text().isEmpty() ? button->text() : widget->accessibleName();
    EXPECT_FALSE(name.isEmpty()) << widget->metaObject()->className() << " "
                                 << widget->objectName().toStdString();
  }
}

/// Presses a key in the panel that is up, once there is one.
void pressInPanel(Qt::Key key) {
  QTimer::singleShot(0, [key] {
    QWidget* panel = QApplication::activeModalWidget();
    if (panel == nullptr) panel = QApplication::topLevelWidgets().value(0);
    QWidget* receiver = panel->findChild<QTreeView*>();
    QTest::keyClick(receiver != nullptr ? receiver : panel, key);
  });
}

TEST_F(OpenPanelTest, runModalGrantsWhatIsPickedBeforeItReturns) {
  std::vector<std::string> granted;
  LinuxPanelProvider provider([&](const auto& item) { granted.push_back(item->path()); }, {});
  const auto panel = provider.openPanel();
  panel->setCanChooseDirectories(true);
  panel->setDirectoryURL(*options_.directory);
  pressInPanel(Qt::Key_Return);
  EXPECT_EQ(panel->runModal(), OpenPanel::Response::OK);
  EXPECT_THAT(granted, ElementsAre(folder_.path()));
  EXPECT_EQ(panel->urls(), std::vector<FileURL>{*options_.directory});

  pressInPanel(Qt::Key_Escape);
  EXPECT_EQ(panel->runModal(), OpenPanel::Response::Cancel);
  EXPECT_THAT(panel->urls(), IsEmpty());
  EXPECT_THAT(granted, testing::SizeIs(1));
}

TEST_F(OpenPanelTest, beginReturnsAtOnceAndCompletesOnceAndLetsGo) {
  std::vector<std::string> order;
  LinuxPanelProvider provider([&](const auto&) { order.emplace_back("granted"); }, {});
  auto panel = provider.openPanel();
  panel->setCanChooseDirectories(true);
  panel->setDirectoryURL(*options_.directory);
  const std::weak_ptr<OpenPanel> weakPanel = panel;
  auto token = std::make_shared<int>(0);
  const std::weak_ptr<int> weakToken = token;
  panel->beginSheetModalForWindow(
      nullptr, [&order, weakPanel, token](OpenPanel::Response response) {
        order.emplace_back(response == OpenPanel::Response::OK ? "completed" : "cancelled");
        EXPECT_THAT(weakPanel.lock()->urls(), testing::SizeIs(1));
      });
  panel.reset();
  token.reset();
  EXPECT_THAT(order, IsEmpty());
  ASSERT_FALSE(weakPanel.expired());
  for (QWidget* widget : QApplication::topLevelWidgets()) {
    if (auto* dialog = dynamic_cast<OpenPanelDialog*>(widget)) {
      QTest::keyClick(dialog->findChild<QTreeView*>(), Qt::Key_Return);
    }
  }
  EXPECT_TRUE(QTest::qWaitFor([&] { return weakPanel.expired() && weakToken.expired(); }));
  EXPECT_THAT(order, ElementsAre("granted", "completed"));
}

}  // namespace
}  // namespace tavrin
