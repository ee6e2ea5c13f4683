#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QHeaderView>
#include <QLabel>
#include <QStackedWidget>
#include <QTableView>
#include <QTest>
#include <memory>

#include "platform/linux/LinuxBundle.h"
#include "platform/linux/LinuxPropertyListSerialization.h"
#include "platform/linux/TextTable.h"
#include "platform/linux/TextTranslator.h"
#include "settings/DefaultSettings.h"
#include "settings/Seeding.h"
#include "settings/window/QtPreferencesWindow.h"
#include "tests/support/FakePlatform.h"
#include "tests/support/Language.h"

namespace tavrin {
namespace {

/// Together with the wide font that is installed for tests, the room of the desktops' own fonts.
constexpr int pointSize = 10;

std::string nameOf(const QWidget& widget, const QString& text) {
  return (widget.objectName() + QLatin1String(": ") + text).toStdString();
}

/// Of the interface file.
constexpr QSize defaultSize(900, 620);

/// The preferences window with the default settings, in the language of the parameter.
class WindowTextsTest : public ::testing::TestWithParam<const char*> {
 protected:
  WindowTextsTest() {
    QFont font = QApplication::font();
    font.setPointSize(pointSize);
    QApplication::setFont(font);
    fake_.bundle.translate = translatedText;
    translateWindows();
    seedSettings(defaults_, *standard_, *fake_.userDefaults.suite(fake_.bundle.group));
    window_ = std::make_unique<QtPreferencesWindow>(fake_.platform, *standard_, settings_);
    // The screen of Qt's off-screen platform is smaller, which the window respects.
    window_->resize(defaultSize);
  }

  void TearDown() override {
    window_.reset();
    for (QTranslator* translator : qApp->findChildren<QTranslator*>()) delete translator;
  }

  template <class Widget>
  QList<Widget*> shown() {
    QList<Widget*> widgets = window_->findChildren<Widget*>();
    widgets.removeIf([](const Widget* widget) { return !widget->isVisible(); });
    return widgets;
  }

  void expectWholeTexts();
  void expectWholeCells(const QTableView& table);

  const testing::Language language_{"de_DE.UTF-8", GetParam()};
  FakePlatform fake_;
  const LinuxBundle installed_;
  LinuxPropertyListSerialization propertyLists_;
  const DefaultSettings defaults_ =
      DefaultSettings::loadedFromBundle(installed_, propertyLists_, fake_.log);
  std::unique_ptr<UserDefaults> standard_ = fake_.userDefaults.standardUserDefaults();
  WorkingLists lists_{*standard_};
  SettingsController settings_{fake_.platform, *standard_, lists_, defaults_};
  std::unique_ptr<QtPreferencesWindow> window_;
};

void WindowTextsTest::expectWholeTexts() {
  for (const auto* button : shown<QAbstractButton>()) {
    if (button->text().isEmpty()) continue;
    EXPECT_GE(button->width(), button->sizeHint().width()) << nameOf(*button, button->text());
    EXPECT_GE(button->height(), button->sizeHint().height()) << nameOf(*button, button->text());
    // What is scrolled out of view has no region.
    const QRect visible = button->visibleRegion().boundingRect();
    if (visible.isValid()) {
      EXPECT_EQ(visible.width(), button->width()) << nameOf(*button, button->text());
    }
  }
  for (const auto* label : shown<QLabel>()) {
    if (label->text().isEmpty()) continue;
    if (label->wordWrap()) {
      EXPECT_GE(label->height(), label->heightForWidth(label->width()))
          << nameOf(*label, label->text());
    } else {
      EXPECT_GE(label->width(), label->sizeHint().width()) << nameOf(*label, label->text());
    }
  }
  for (const auto* choice : shown<QComboBox>()) {
    EXPECT_GE(choice->width(), choice->sizeHint().width())
        << nameOf(*choice, choice->currentText());
  }
  for (const auto* table : shown<QTableView>()) expectWholeCells(*table);
}

void WindowTextsTest::expectWholeCells(const QTableView& table) {
  const QAbstractItemModel& model = *table.model();
  EXPECT_GT(model.rowCount(), 0);
  for (int column = 0; column < model.columnCount(); ++column) {
    EXPECT_GE(table.columnWidth(column), table.horizontalHeader()->sectionSizeHint(column))
        << nameOf(table, model.headerData(column, Qt::Horizontal).toString());
    for (int row = 0; row < model.rowCount(); ++row) {
      const QModelIndex index = model.index(row, column);
      const QString text = index.data().toString();
      if (text.isEmpty()) continue;
      EXPECT_GE(table.columnWidth(column), table.sizeHintForIndex(index).width())
          << nameOf(table, text);
    }
  }
}

TEST_P(WindowTextsTest, NothingIsCutOffAtTheDefaultSize) {
  window_->show();
  ASSERT_TRUE(QTest::qWaitForWindowExposed(window_.get()));
  EXPECT_EQ(window_->size(), defaultSize) << "the texts need more room than the window has";
  auto& pages = *window_->findChild<QStackedWidget*>(QStringLiteral("tabView"));
  ASSERT_EQ(pages.count(), 9);
  for (int page = 0; page < pages.count(); ++page) {
    pages.setCurrentIndex(page);
    QApplication::processEvents();
    expectWholeTexts();
  }
}

TEST_P(WindowTextsTest, NothingIsCutOffInTheListOfFileManagers) {
  using State = ExtensionHost::State;
  fake_.extensionController.installed = {{"a", "Thunar File Manager", State::On},
                                         {"b", "Files (Nautilus)", State::Off},
                                         {"c", "Dolphin", State::Missing}};
  window_->show();
  for (const bool isEmpty : {false, true}) {
    if (isEmpty) fake_.extensionController.installed.clear();
    fake_.extensionController.showExtensionManagementInterface();
    auto* dialog = window_->findChild<QDialog*>();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(dialog));
    expectWholeTexts();
    dialog->close();
    QCoreApplication::sendPostedEvents(dialog, QEvent::DeferredDelete);
  }
}

INSTANTIATE_TEST_SUITE_P(Languages, WindowTextsTest,
                         ::testing::Values("C", "de", "es", "fr", "ja", "ko", "pt_BR", "ru",
                                           "zh_CN", "zh_TW"),
                         [](const auto& language) { return std::string(language.param); });

}  // namespace
}  // namespace tavrin
