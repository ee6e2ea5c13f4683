#include "platform/linux/PropertyListDate.h"

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>

namespace tavrin {

namespace {

using std::chrono::days;
using std::chrono::seconds;
using std::chrono::sys_days;
using std::chrono::sys_seconds;
using std::chrono::year_month_day;

constexpr sys_days referenceDay{std::chrono::January / 1 / 2001};
constexpr sys_days firstDay{std::chrono::January / 1 / 1};
constexpr sys_days dayAfterLast{std::chrono::January / 1 / 10000};

void appendPadded(std::string& text, long number, std::size_t width, char separator) {
  const std::string digits = std::to_string(number);
  if (digits.size() < width) text.append(width - digits.size(), '0');
  text += digits;
  text += separator;
}

/// Takes `width` digits and the separator after them off the front.
std::optional<int> takeNumber(std::string_view& text, std::size_t width, char separator) {
  if (text.size() <= width || text[width] != separator) return std::nullopt;
  const std::string_view digits = text.substr(0, width);
  if (digits.find_first_not_of("0123456789") != digits.npos) return std::nullopt;
  int number = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), number);
  text.remove_prefix(width + 1);
  return number;
}

}  // namespace

std::optional<std::string> textFromDate(const PropertyList::Date& date) {
  const double whole = std::floor(date.secondsSinceReferenceDate);
  const double first = static_cast<double>(seconds(firstDay - referenceDay).count());
  const double end = static_cast<double>(seconds(dayAfterLast - referenceDay).count());
  if (!(whole >= first && whole < end)) return std::nullopt;
  const sys_seconds moment = referenceDay + seconds(static_cast<long>(whole));
  const sys_days day = std::chrono::floor<days>(moment);
  const year_month_day calendar{day};
  const std::chrono::hh_mm_ss clock{moment - day};
  std::string text;
  appendPadded(text, int{calendar.year()}, 4, '-');
  appendPadded(text, unsigned{calendar.month()}, 2, '-');
  appendPadded(text, unsigned{calendar.day()}, 2, 'T');
  appendPadded(text, clock.hours().count(), 2, ':');
  appendPadded(text, clock.minutes().count(), 2, ':');
  appendPadded(text, clock.seconds().count(), 2, 'Z');
  return text;
}

std::optional<PropertyList::Date> dateFromText(std::string_view text) {
  constexpr std::array<std::size_t, 6> widths{4, 2, 2, 2, 2, 2};
  constexpr std::string_view separators = "--T::Z";
  std::array<int, 6> parts{};
  for (std::size_t index = 0; index < parts.size(); ++index) {
    const auto part = takeNumber(text, widths[index], separators[index]);
    if (!part) return std::nullopt;
    parts[index] = *part;
  }
  const auto calendar = std::chrono::year(parts[0]) /
                        std::chrono::month(static_cast<unsigned>(parts[1])) /
                        std::chrono::day(static_cast<unsigned>(parts[2]));
  // 60 is a leap second.
  if (!text.empty() || !calendar.ok() || parts[3] > 23 || parts[4] > 59 || parts[5] > 60) {
    return std::nullopt;
  }
  const seconds sinceMidnight{parts[3] * 3600 + parts[4] * 60 + parts[5]};
  const seconds sinceReference = sys_days(calendar) - referenceDay + sinceMidnight;
  return PropertyList::Date{static_cast<double>(sinceReference.count())};
}

}  // namespace tavrin
