#include <gtest/gtest.h>

#include <QApplication>
#include <QDialogButtonBox>
#include <QPushButton>
#include <string>

#include "platform/linux/LinuxBundle.h"
#include "platform/linux/TextTranslator.h"
#include "tests/support/Language.h"

namespace tavrin {
namespace {

using testing::Language;

/// The application is that of all tests.
class TextTranslatorTest : public ::testing::Test {
 protected:
  void TearDown() override {
    for (QTranslator* translator : translators()) delete translator;
    QGuiApplication::setLayoutDirection(Qt::LayoutDirectionAuto);
  }

  static QList<QTranslator*> translators() { return qApp->findChildren<QTranslator*>(); }
  static std::string text(const char* key) {
    return QCoreApplication::translate("Anything", key).toStdString();
  }
};

TEST_F(TextTranslatorTest, WindowsTakeTheTextsThatTheBundleHas) {
  const Language german("de_DE.UTF-8");
  const LinuxBundle bundle;
  translateWindows();
  EXPECT_EQ(bundle.localizedString("Quit Tavrin"), "Tavrin beenden");
  EXPECT_EQ(text("Quit Tavrin"), "Tavrin beenden");
  EXPECT_EQ(text("a name that a user gave"), "a name that a user gave");
  EXPECT_EQ(QGuiApplication::layoutDirection(), Qt::LeftToRight);
}

TEST_F(TextTranslatorTest, ButtonsOfQtSpeakTheSameLanguage) {
  const Language german("de_DE.UTF-8");
  translateWindows();
  const QDialogButtonBox buttons(QDialogButtonBox::Cancel);
  QString cancel = buttons.button(QDialogButtonBox::Cancel)->text();
  EXPECT_EQ(cancel.remove(QLatin1Char('&')).toStdString(), "Abbrechen");
}

TEST_F(TextTranslatorTest, EnglishInstallsNothing) {
  const Language english("C");
  translateWindows();
  EXPECT_TRUE(translators().isEmpty());
  EXPECT_EQ(text("Cancel"), "Cancel");
  EXPECT_EQ(QGuiApplication::layoutDirection(), Qt::LeftToRight);
}

TEST_F(TextTranslatorTest, WindowsAreLaidOutInTheDirectionOfTheLanguage) {
  const Language arabic("ar_EG.UTF-8");
  translateWindows();
  EXPECT_EQ(QGuiApplication::layoutDirection(), Qt::RightToLeft);
}

}  // namespace
}  // namespace tavrin
