#include <gtest/gtest.h>

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>
#include <functional>

#include "platform/linux/LinuxAlert.h"

namespace tavrin {
namespace {

/// Does something to the alert's window once it is up.
void whenShown(std::function<void(QMessageBox& box)> act) {
  QTimer::singleShot(0, [act = std::move(act)] {
    auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    ASSERT_NE(box, nullptr);
    act(*box);
  });
}

void press(Qt::Key key) {
  whenShown([key](QMessageBox& box) { QTest::keyClick(&box, key); });
}

void pressButton(const char* title) {
  whenShown([title](QMessageBox& box) {
    for (QAbstractButton* button : box.buttons()) {
      if (button->text() == QLatin1String(title)) button->click();
    }
  });
}

LinuxAlert alertWithButtons(std::initializer_list<const char*> titles) {
  LinuxAlert alert;
  alert.setInformativeText("Informative <b>text</b>.");
  for (const char* title : titles) alert.addButtonWithTitle(title);
  return alert;
}

TEST(LinuxAlertTest, answersTheCodeOfTheButtonPressed) {
  LinuxAlert alert = alertWithButtons({"Save", "Cancel", "Do not save"});
  pressButton("Save");
  EXPECT_EQ(alert.runModal(), 1000);
  pressButton("Cancel");
  EXPECT_EQ(alert.runModal(), 1001);
  pressButton("Do not save");
  EXPECT_EQ(alert.runModalAsSheet(nullptr), 1002);
}

TEST(LinuxAlertTest, returnPressesTheFirstButtonAndEscapeCancel) {
  LinuxAlert alert = alertWithButtons({"Save", "Cancel", "Do not save"});
  press(Qt::Key_Return);
  EXPECT_EQ(alert.runModal(), 1000);
  press(Qt::Key_Escape);
  EXPECT_EQ(alert.runModal(), 1001);
  whenShown([](QMessageBox& box) { box.close(); });
  EXPECT_EQ(alert.runModal(), 1001);
}

TEST(LinuxAlertTest, closingWithoutCancelPressesTheLastButton) {
  LinuxAlert alert = alertWithButtons({"First", "Second"});
  press(Qt::Key_Escape);
  EXPECT_EQ(alert.runModal(), 1001);
  LinuxAlert bare = alertWithButtons({});
  press(Qt::Key_Escape);
  EXPECT_EQ(bare.runModal(), 1000);
}

TEST(LinuxAlertTest, showsTheInformativeTextAsItStandsWithAndWithoutATitle) {
  LinuxAlert alert = alertWithButtons({"OK"});
  whenShown([](QMessageBox& box) {
    EXPECT_EQ(box.text(), QStringLiteral("Informative <b>text</b>."));
    EXPECT_EQ(box.textFormat(), Qt::PlainText);
    EXPECT_EQ(box.icon(), QMessageBox::Critical);
    box.close();
  });
  alert.setAlertStyle(Alert::Style::Critical);
  alert.runModal();

  alert.setMessageText("Title");
  whenShown([](QMessageBox& box) {
    EXPECT_EQ(box.text(), QStringLiteral("Title"));
    EXPECT_EQ(box.informativeText(), QStringLiteral("Informative <b>text</b>."));
    box.close();
  });
  alert.runModal();
}

}  // namespace
}  // namespace tavrin
