#include "platform/linux/CurrentStartupToken.h"

#include <QApplication>
#include <QVariant>
#include <charconv>
#include <string_view>

namespace tavrin {

namespace {

constexpr const char* tokenProperty = "tavrinStartupToken";

}  // namespace

void setCurrentStartupToken(const std::string& token) {
  if (qApp != nullptr) qApp->setProperty(tokenProperty, QByteArray::fromStdString(token));
}

std::string currentStartupToken() {
  if (qApp == nullptr) return {};
  return qApp->property(tokenProperty).toByteArray().toStdString();
}

std::uint32_t timeOfStartupToken(const std::string& token) {
  static constexpr std::string_view mark = "_TIME";
  const std::size_t found = token.rfind(mark);
  std::uint32_t time = 0;
  if (found == token.npos) return time;
  const char* start = token.data() + found + mark.size();
  std::from_chars(start, token.data() + token.size(), time);
  return time;
}

}  // namespace tavrin
