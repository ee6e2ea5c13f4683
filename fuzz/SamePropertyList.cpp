#include "fuzz/SamePropertyList.h"

#include <algorithm>
#include <bit>
#include <cmath>

#include "fuzz/Require.h"
#include "platform/linux/PropertyListFormats.h"

namespace tavrin::fuzz {

namespace {

bool areSameReals(double one, double other) {
  if (std::isnan(one)) return std::isnan(other);
  return std::bit_cast<std::uint64_t>(one) == std::bit_cast<std::uint64_t>(other);
}

bool areSameDates(double one, double other, Dates dates) {
  return dates == Dates::Exact ? areSameReals(one, other) : std::floor(one) == std::floor(other);
}

bool areSameScalars(const PropertyList& one, const PropertyList& other, Dates dates) {
  if (one.isReal() && other.isReal()) return areSameReals(one.doubleValue(), other.doubleValue());
  const auto* oneDate = one.dateIfDate();
  const auto* otherDate = other.dateIfDate();
  if (oneDate == nullptr || otherDate == nullptr) return one == other;
  return areSameDates(oneDate->secondsSinceReferenceDate, otherDate->secondsSinceReferenceDate,
                      dates);
}

void requireRoundTrip(const PropertyList& value, const PropertyList::Data& written,
                      const std::optional<PropertyList>& again, Dates dates) {
  require(again.has_value(), "what was written can be read");
  require(areSame(value, *again, dates), "what was written reads as it was");
  const auto rewritten =
      dates == Dates::Exact ? binaryFromPropertyList(*again, {}) : xmlFromPropertyList(*again);
  require(rewritten == written, "writing again gives the same bytes");
}

}  // namespace

bool areSame(const PropertyList& one, const PropertyList& other, Dates dates) {
  const auto same = [dates](const PropertyList& each, const PropertyList& its) {
    return areSame(each, its, dates);
  };
  const auto* oneArray = one.arrayIfArray();
  const auto* otherArray = other.arrayIfArray();
  if (oneArray != nullptr && otherArray != nullptr) {
    return std::equal(oneArray->begin(), oneArray->end(), otherArray->begin(), otherArray->end(),
                      same);
  }
  const auto* oneDictionary = one.dictionaryIfDictionary();
  const auto* otherDictionary = other.dictionaryIfDictionary();
  if (oneDictionary == nullptr || otherDictionary == nullptr) {
    return areSameScalars(one, other, dates);
  }
  return std::equal(oneDictionary->begin(), oneDictionary->end(), otherDictionary->begin(),
                    otherDictionary->end(), [&same](const auto& each, const auto& its) {
                      return each.first == its.first && same(each.second, its.second);
                    });
}

void requireRoundTrips(const PropertyList& value) {
  const auto binary = binaryFromPropertyList(value, {});
  require(binary.has_value(), "a value that was read can be written");
  requireRoundTrip(value, *binary, propertyListFromBinary(binary->data(), binary->size(), {}),
                   Dates::Exact);
  const auto xml = xmlFromPropertyList(value);
  if (!xml) return;
  const std::string_view text(reinterpret_cast<const char*>(xml->data()), xml->size());
  requireRoundTrip(value, *xml, propertyListFromXml(text), Dates::WholeSeconds);
}

std::optional<PropertyList> smallListFromBinary(const std::uint8_t* bytes, std::size_t size) {
  constexpr PropertyListLimits few{300, std::size_t{1} << 13U};
  return propertyListFromBinary(bytes, size, {}, few);
}

}  // namespace tavrin::fuzz
