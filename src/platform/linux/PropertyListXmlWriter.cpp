#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "platform/PropertyListSerialization.h"
#include "platform/linux/PropertyListDate.h"
#include "platform/linux/PropertyListFormats.h"
#include "platform/linux/PropertyListText.h"

namespace tavrin {

namespace {

constexpr std::string_view prolog =
    R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<plist version="1.0">
)";
constexpr std::string_view epilog = "</plist>\n";

std::string base64(const PropertyList::Data& data) {
  constexpr std::string_view digits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((data.size() + 2) / 3 * 4);
  for (std::size_t start = 0; start < data.size(); start += 3) {
    const std::size_t count = std::min<std::size_t>(3, data.size() - start);
    std::uint32_t group = 0;
    for (std::size_t index = 0; index < 3; ++index) {
      group = (group << 8U) | (index < count ? data[start + index] : 0U);
    }
    for (std::size_t digit = 0; digit < 4; ++digit) {
      text += digit <= count ? digits[(group >> (18 - 6 * digit)) & 0x3FU] : '=';
    }
  }
  return text;
}

std::string textOfReal(double value) {
  if (std::isnan(value)) return "nan";
  if (std::isinf(value)) return value > 0 ? "+infinity" : "-infinity";
  std::array<char, 40> buffer{};
  const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
  return {buffer.data(), end.ptr};
}

class XmlWriter {
 public:
  std::optional<PropertyList::Data> write(const PropertyList& root);

 private:
  bool value(const PropertyList& value, std::size_t depth);
  bool array(const PropertyList::Array& elements, std::size_t depth);
  bool dictionary(const PropertyList::Dictionary& entries, std::size_t depth);
  bool date(const PropertyList::Date& date, std::size_t depth);
  void scalar(const PropertyList& value, std::size_t depth);
  void data(const PropertyList::Data& data, std::size_t depth);
  void line(std::size_t depth, std::string_view text);
  void element(std::size_t depth, std::string_view name, std::string_view content);
  bool count(std::size_t bytes);
  static std::string escaped(std::string_view text);

  std::string output_;
  std::size_t objects_ = 0;
  std::size_t bytes_ = 0;
};

std::optional<PropertyList::Data> XmlWriter::write(const PropertyList& root) {
  output_ = prolog;
  if (!value(root, 0)) return std::nullopt;
  output_ += epilog;
  return PropertyList::Data(output_.begin(), output_.end());
}

bool XmlWriter::count(std::size_t bytes) {
  bytes_ += bytes;
  return ++objects_ <= usualPropertyListLimits.objects && bytes_ <= usualPropertyListLimits.bytes;
}

bool XmlWriter::value(const PropertyList& value, std::size_t depth) {
  const auto* text = value.stringIfString();
  const auto* bytes = value.dataIfData();
  if (!count(text ? text->size() : bytes ? bytes->size() : 0)) return false;
  if (text) {
    element(depth, "string", escaped(*text));
    return true;
  }
  if (bytes) {
    data(*bytes, depth);
    return true;
  }
  if (const auto* elements = value.arrayIfArray()) return array(*elements, depth);
  if (const auto* entries = value.dictionaryIfDictionary()) return dictionary(*entries, depth);
  if (const auto* moment = value.dateIfDate()) return date(*moment, depth);
  scalar(value, depth);
  return true;
}

bool XmlWriter::array(const PropertyList::Array& elements, std::size_t depth) {
  if (depth >= PropertyListSerialization::maximumDepth) return false;
  if (elements.empty()) {
    line(depth, "<array/>");
    return true;
  }
  line(depth, "<array>");
  for (const PropertyList& entry : elements) {
    if (!value(entry, depth + 1)) return false;
  }
  line(depth, "</array>");
  return true;
}

bool XmlWriter::dictionary(const PropertyList::Dictionary& entries, std::size_t depth) {
  if (depth >= PropertyListSerialization::maximumDepth) return false;
  if (entries.empty()) {
    line(depth, "<dict/>");
    return true;
  }
  line(depth, "<dict>");
  for (const auto& [key, entry] : entries) {
    if (!count(key.size())) return false;
    element(depth + 1, "key", escaped(key));
    if (!value(entry, depth + 1)) return false;
  }
  line(depth, "</dict>");
  return true;
}

bool XmlWriter::date(const PropertyList::Date& date, std::size_t depth) {
  const auto text = textFromDate(date);
  if (text) element(depth, "date", *text);
  return text.has_value();
}

void XmlWriter::scalar(const PropertyList& value, std::size_t depth) {
  if (value.isBoolean()) {
    line(depth, value.boolValue() ? "<true/>" : "<false/>");
  } else if (value.isInteger()) {
    element(depth, "integer", std::to_string(value.integerValue()));
  } else {
    element(depth, "real", textOfReal(value.doubleValue()));
  }
}

void XmlWriter::data(const PropertyList::Data& data, std::size_t depth) {
  constexpr std::size_t lineWidth = 76;
  const std::string digits = base64(data);
  line(depth, "<data>");
  for (std::size_t start = 0; start < digits.size(); start += lineWidth) {
    line(depth, std::string_view(digits).substr(start, lineWidth));
  }
  line(depth, "</data>");
}

void XmlWriter::line(std::size_t depth, std::string_view text) {
  output_.append(depth, '\t');
  output_ += text;
  output_ += '\n';
}

void XmlWriter::element(std::size_t depth, std::string_view name, std::string_view content) {
  output_.append(depth, '\t');
  output_ += '<';
  output_ += name;
  output_ += '>';
  output_ += content;
  output_ += "</";
  output_ += name;
  output_ += ">\n";
}

std::string XmlWriter::escaped(std::string_view text) {
  std::string result;
  for (const char character : xmlTextFromBytes(text)) {
    switch (character) {
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '&':
        result += "&amp;";
        break;
      case '\r':
        // Readers may turn a bare one into a line feed.
        result += "&#13;";
        break;
      default:
        result += character;
    }
  }
  return result;
}

}  // namespace

std::optional<PropertyList::Data> xmlFromPropertyList(const PropertyList& value) {
  return XmlWriter().write(value);
}

}  // namespace tavrin
