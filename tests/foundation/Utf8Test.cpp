#include <gtest/gtest.h>

#include <string>

#include "foundation/Utf8.h"

namespace tavrin {
namespace {

TEST(Utf8, TakesEveryFormAtItsLimits) {
  for (const std::string_view text :
       {"", "plain", "\x7F", "\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80",
        "\xEF\xBF\xBF", "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_TRUE(isUtf8(text)) << text;
    EXPECT_TRUE(isUtf8("a" + std::string(text) + "ü"));
  }
  EXPECT_TRUE(isUtf8(std::string_view("a\0b", 3)));
}

TEST(Utf8, RefusesWhatIsNoCharacter) {
  for (const std::string_view bytes :
       {"\x80", "\xBF", "\xC0\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF",
        "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "\xC3", "\xC3(", "\xE2\x82", "\xE2\x82(",
        "\xF0\x9F\x98", "\xF0\x9F\x98("}) {
    EXPECT_FALSE(isUtf8(bytes));
    EXPECT_FALSE(isUtf8("ü" + std::string(bytes) + "abc"));
  }
}

}  // namespace
}  // namespace tavrin
