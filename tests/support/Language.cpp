#include "tests/support/Language.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>

#include "platform/linux/TextTable.h"

namespace tavrin::testing {

// NOLINTBEGIN(concurrency-mt-unsafe): tests set the locale before their threads run
Language::Language(const char* locale, const char* textLanguage) {
  ::setenv("LOCPATH", TAVRIN_TEST_LOCALES, 1);
  ::unsetenv("LANGUAGE");
  if (textLanguage != nullptr) ::setenv("LANGUAGE", textLanguage, 1);
  EXPECT_NE(std::setlocale(LC_ALL, locale), nullptr) << locale;
  bindTextTable(TAVRIN_TEST_TEXTS);
}

Language::~Language() {
  std::setlocale(LC_ALL, "C.UTF-8");
  ::unsetenv("LANGUAGE");
  ::unsetenv("LOCPATH");
}
// NOLINTEND(concurrency-mt-unsafe)

}  // namespace tavrin::testing
