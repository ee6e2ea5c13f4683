#include <gtest/gtest.h>

#include "platform/linux/TextTable.h"
#include "tests/support/Language.h"

namespace tavrin {
namespace {

using testing::Language;

std::string items(unsigned long count) {
  return translatedCount("%n item", "%n items", count);
}

TEST(TextTableTest, TextsAreInTheLanguageOfTheLocale) {
  const Language german("de_DE.UTF-8");
  EXPECT_EQ(translatedText("Quit Tavrin"), "Tavrin beenden");
  EXPECT_EQ(translatedText("Open"), "Öffnen");
  EXPECT_EQ(textLanguage(), "de");
}

TEST(TextTableTest, TextsWithoutTranslationStayAsTheyAre) {
  const Language german("de_DE.UTF-8");
  EXPECT_EQ(translatedText("a name that a user gave"), "a name that a user gave");
  EXPECT_EQ(translatedText("quit tavrin"), "quit tavrin");
  EXPECT_EQ(translatedText(""), "") << "the table's own information is no text";
}

TEST(TextTableTest, LanguagesWithoutATableAreLeftInEnglish) {
  for (const char* locale : {"C", "ar_EG.UTF-8"}) {
    const Language language(locale);
    EXPECT_EQ(translatedText("Quit Tavrin"), "Quit Tavrin") << locale;
    EXPECT_EQ(textLanguage(), "") << locale;
    EXPECT_EQ(items(1), "%n item") << locale;
    EXPECT_EQ(items(0), "%n items") << locale;
    EXPECT_EQ(items(21), "%n items") << locale;
  }
}

TEST(TextTableTest, CountsTakeThePluralFormsOfTheLanguage) {
  const Language russian("ru_RU.UTF-8");
  for (const unsigned long count : {1UL, 21UL, 101UL}) EXPECT_EQ(items(count), "%n объект");
  for (const unsigned long count : {2UL, 4UL, 32UL}) EXPECT_EQ(items(count), "%n объекта");
  for (const unsigned long count : {0UL, 5UL, 11UL, 14UL}) EXPECT_EQ(items(count), "%n объектов");
}

}  // namespace
}  // namespace tavrin
