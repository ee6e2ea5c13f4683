#include <gtest/gtest.h>
#include <plist/plist.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>

#include "platform/linux/LinuxPropertyListSerialization.h"
#include "tests/platform/storage/ScratchFolder.h"

namespace tavrin {
namespace {

using Format = PropertyListSerialization::Format;
using test::ScratchFolder;

constexpr Format formats[] = {Format::Xml, Format::Binary};

PropertyList::Data bytes(std::string_view text) {
  return {text.begin(), text.end()};
}

std::string text(const PropertyList::Data& data) {
  return {data.begin(), data.end()};
}

std::string document(std::string_view content) {
  return "<plist version=\"1.0\">" + std::string(content) + "</plist>";
}

PropertyList sample() {
  return PropertyList::Dictionary{
      {"", "an empty key"},
      {"array", PropertyList::Array{1, 2.5, "x", true, false, PropertyList::Array{}}},
      {"data", PropertyList::Data{0, 1, 2, 254, 255}},
      {"date", PropertyList::Date{-3600}},
      {"dictionary", PropertyList::Dictionary{}},
      {"empty data", PropertyList::Data{}},
      {"integers",
       PropertyList::Array{0, -1, 255, 256, 65536, std::numeric_limits<std::int64_t>::max(),
                           std::numeric_limits<std::int64_t>::min()}},
      {"long", std::string(70000, 'l')},
      {"twenty", PropertyList::Array(20, PropertyList("same"))},
      {"ünïcode ☃", "\xF0\x9F\x98\x80 and ü"}};
}

class Serialization : public testing::Test {
 protected:
  std::optional<PropertyList> read(const PropertyList::Data& data) {
    auto result = lists_.propertyListFromData(data);
    if (!result) {
      EXPECT_EQ(result.error().code, std::errc::invalid_argument);
      return std::nullopt;
    }
    return std::move(result).value();
  }
  std::optional<PropertyList> readXml(std::string_view content) {
    return read(bytes(document(content)));
  }
  PropertyList::Data write(const PropertyList& value, Format format) {
    auto result = lists_.dataFromPropertyList(value, format);
    EXPECT_TRUE(result);
    return result ? std::move(result).value() : PropertyList::Data();
  }
  void expectSurvives(const PropertyList& value) {
    for (const Format format : formats) {
      const auto back = read(write(value, format));
      ASSERT_TRUE(back);
      EXPECT_EQ(*back, value);
    }
  }

  LinuxPropertyListSerialization lists_;
};

TEST_F(Serialization, EveryKindSurvivesInBothFormats) {
  expectSurvives(sample());
  for (const double real :
       {0.1, -1e300, 5e-324, 100000.0, std::numeric_limits<double>::infinity()}) {
    expectSurvives(real);
  }
  const auto nan = read(write(std::nan(""), Format::Xml));
  EXPECT_TRUE(nan && nan->isReal() && std::isnan(nan->doubleValue()));
}

TEST_F(Serialization, EveryByteStringSurvives) {
  using namespace std::string_literals;
  for (const std::string& odd :
       {"\xFF\xFE"s, "a\xC3"s, "\xED\xA0\x80"s, "nul\0nul"s, "\x01\x02\x1F\x7F"s, "line\r\nfeed\r"s,
        " blank "s, "\n"s, "<&>]]>\"'"s, "\xEF\xBF\xBE\xEF\xBF\xBF"s, "\xF4\x8F\x9C\x80"s,
        "\xF4\x8F\x9C\x80\xFF"s, "\xC0\x80"s, "\xF4\x90\x80\x80"s, "\xEF\xBB\xBF"s}) {
    SCOPED_TRACE(testing::PrintToString(odd));
    expectSurvives(PropertyList::Dictionary{{odd, odd}});
  }
  std::mt19937 random(1);
  for (int round = 0; round < 500; ++round) {
    std::string noise(random() % 40, '\0');
    for (char& character : noise) character = static_cast<char>(random());
    expectSurvives(noise);
  }
}

TEST_F(Serialization, DatesKeepFractionsInBinaryAndSecondsInXml) {
  for (const double moment : {0.0, -0.5, 1e9 + 0.25, -6.3e10, 2.5e11}) {
    const PropertyList date = PropertyList::Date{moment};
    EXPECT_EQ(read(write(date, Format::Binary)), date);
    EXPECT_EQ(read(write(date, Format::Xml)), PropertyList(PropertyList::Date{std::floor(moment)}));
  }
  EXPECT_NE(text(write(PropertyList::Date{86400 * 59.0 + 1}, Format::Xml))
                .find("<date>2001-03-01T00:00:01Z</date>"),
            std::string::npos);
  for (const double moment : {1e300, -1e12, std::nan("")}) {
    EXPECT_FALSE(lists_.dataFromPropertyList(PropertyList::Date{moment}, Format::Xml));
  }
}

TEST_F(Serialization, ReadsWhatXmlAllows) {
  const std::pair<const char*, PropertyList> cases[] = {
      {"<string>a&lt;b&#65;&#x42;<![CDATA[<c>&amp;]]><!-- </string> -->d</string>",
       "a<bAB<c>&amp;d"},
      {"<string/>", ""},
      {"<integer> +7 </integer>", 7},
      {"<integer>010</integer>", 10},
      {"<integer>-0x10</integer>", -16},
      {"<integer>-9223372036854775808</integer>", std::numeric_limits<std::int64_t>::min()},
      {"<integer>18446744073709551615</integer>", 18446744073709551615.0},
      {"<data> AAEC\n /w== </data>", PropertyList::Data{0, 1, 2, 255}},
      {"<true></true>", true},
      {"<array><!-- <array> --><false /></array >", PropertyList::Array{false}},
      {"<dict> <!-- first --> <key>k</key> <!-- then --> <true/> </dict>",
       PropertyList::Dictionary{{"k", true}}},
      {"<date>2024-02-29T12:00:00Z</date>", PropertyList::Date{730900800}}};
  for (const auto& [content, expected] : cases) EXPECT_EQ(readXml(content), expected) << content;
  EXPECT_EQ(read(bytes("\xEF\xBB\xBF<?xml version='1.0'?>\n<!-- x --><!DOCTYPE plist SYSTEM \"p\">"
                       "<plist><true/></plist>\n<!-- end -->\n")),
            PropertyList(true));
}

TEST_F(Serialization, RefusesMalformedXml) {
  for (const char* content : {"",
                              "text",
                              "<true/><true/>",
                              "<dict><key>a</key></dict>",
                              "<dict><true/></dict>",
                              "<array><key>a</key></array>",
                              "<integer>12x</integer>",
                              "<integer/>",
                              "<real>1,5</real>",
                              "<integer>18446744073709551616</integer>",
                              "<integer>-9223372036854775809</integer>",
                              "<string>&unknown;</string>",
                              "<string>&#0;</string>",
                              "<string>&#xD800;</string>",
                              "<string><b>x</b></string>",
                              "<data>%%</data>",
                              "<data>AA=A</data>",
                              "<true>x</true>",
                              "<date>2023-02-29T00:00:00Z</date>",
                              "<date>yesterday</date>",
                              "<array></dict>",
                              "<array a=\"b\"></array>",
                              "<array><!-- </array>",
                              "<string><![CDATA[</string>",
                              "<unknown/>",
                              "</array>",
                              "<array/></plist><plist>"}) {
    EXPECT_FALSE(readXml(content)) << content;
  }
  for (const char* whole :
       {"", "<", "<?xml", "{ a = b; }", "{\"a\": 1}", "[1]", "<plist/>", "<true/>",
        "<!DOCTYPE plist [<!ENTITY a \"b\">]><plist><string>&a;</string></plist>",
        "<plist><true/></plist>x", "bplist", "bplist00",
        "bplist15aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa"}) {
    EXPECT_FALSE(read(bytes(whole))) << whole;
  }
}

TEST_F(Serialization, TruncatedAtAnyLengthIsRefusedAndDamagedNeverHarms) {
  const PropertyList list = PropertyList::Dictionary{
      {"a", PropertyList::Array{1, 2.5, "text", PropertyList::Data{1, 2}, PropertyList::Date{1}}},
      {"ü", PropertyList::Dictionary{{"deep", std::string(300, 'x')}}}};
  for (const Format format : formats) {
    const PropertyList::Data whole = write(list, format);
    const std::size_t meaningful = format == Format::Xml ? whole.size() - 1 : whole.size();
    for (std::size_t length = 0; length < meaningful; ++length) {
      const PropertyList::Data cut(whole.begin(), whole.begin() + static_cast<long>(length));
      EXPECT_FALSE(read(cut)) << length;
    }
    for (std::size_t position = 0; position < whole.size(); ++position) {
      for (const unsigned value : {0x00U, 0x0FU, 0x3CU, 0x7FU, 0xDFU, 0xFFU}) {
        PropertyList::Data damaged = whole;
        damaged[position] = static_cast<std::uint8_t>(value);
        static_cast<void>(read(damaged));
      }
    }
  }
}

/// A binary property list of the given objects, the first of which is the root.
PropertyList::Data binary(const std::vector<std::string>& objects) {
  std::string file = "bplist00";
  std::string offsets;
  for (const std::string& object : objects) {
    offsets += static_cast<char>(file.size() >> 8U);
    offsets += static_cast<char>(file.size());
    file += object;
  }
  const std::size_t table = file.size();
  file += offsets + std::string(6, '\0') + "\x02\x01";
  for (const std::size_t number : {objects.size(), std::size_t{0}, table}) {
    file += std::string(6, '\0');
    file += static_cast<char>(number >> 8U);
    file += static_cast<char>(number);
  }
  return bytes(file);
}

TEST_F(Serialization, BinaryCyclesExpansionsAndOddObjectsAreRefused) {
  using namespace std::string_literals;
  EXPECT_EQ(read(binary({"\xA2\x01\x01"s, "\x51z"s})), PropertyList(PropertyList::Array{"z", "z"}));
  EXPECT_FALSE(read(binary({"\xA1\x00"s})));
  EXPECT_FALSE(read(binary({"\xA1\x01"s, "\xD1\x02\x00"s, "\x51k"s})));
  std::vector<std::string> doubling(40, "");
  for (std::size_t level = 0; level < 39; ++level) {
    doubling[level] = "\xA2"s + static_cast<char>(level + 1) + static_cast<char>(level + 1);
  }
  doubling[39] = "\x09";
  EXPECT_FALSE(read(binary(doubling)));
  const std::string megabyte =
      "\x4F\x12"s + std::string("\0\0\xF0\0", 4) + std::string(0xF000, 'd');
  std::string many = "\xAF\x11\x20\x00"s + std::string(0x2000, '\1');
  EXPECT_FALSE(read(binary({many, megabyte})));
  for (const std::string& odd :
       {"\x00"s, "\x0F"s, "\x24"s, "\x32"s, "\x70"s, "\x15"s, "\xF0"s, "\x4F\x51"s, "\xD1\x01\x01"s,
        "\x5F\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s, "\x6F\x13\x80\0\0\0\0\0\0\0"s,
        "\xAF\x13\x20\0\0\0\0\0\0\1"s}) {
    EXPECT_FALSE(read(binary({odd, "\x09"s}))) << testing::PrintToString(odd);
  }
  EXPECT_EQ(read(binary({"\x81\x01\x02"s})),
            PropertyList(PropertyList::Dictionary{{"CF$UID", 258}}));
  EXPECT_EQ(read(binary({"\x14"s + std::string(8, '\0') + std::string(8, '\xFF')})),
            PropertyList(18446744073709551615.0));
}

TEST_F(Serialization, DepthIsLimitedBothWays) {
  const auto nested = [](std::size_t depth) {
    PropertyList list = "core";
    for (std::size_t level = 0; level < depth; ++level) {
      PropertyList::Array outer;
      outer.push_back(std::move(list));
      list = std::move(outer);
    }
    return list;
  };
  expectSurvives(nested(PropertyListSerialization::maximumDepth));
  for (const Format format : formats) {
    EXPECT_FALSE(
        lists_.dataFromPropertyList(nested(PropertyListSerialization::maximumDepth + 1), format));
  }
  std::string deep;
  for (int level = 0; level < 300000; ++level) deep += "<array>";
  EXPECT_FALSE(readXml(deep));
  std::string hidden;
  for (int level = 0; level < 600; ++level) hidden += "<array><!-- </array> -->";
  for (int level = 0; level < 600; ++level) hidden += "</array>";
  EXPECT_FALSE(readXml(hidden));
}

TEST_F(Serialization, ManyReferencesInOneStringTakeLinearTime) {
  std::string content = "<string>";
  for (int index = 0; index < 2'000'000; ++index) content += "&amp;";
  EXPECT_EQ(readXml(content + "</string>"), PropertyList(std::string(2'000'000, '&')));
}

TEST_F(Serialization, AnotherReaderAgrees) {
  struct Free {
    void operator()(char* memory) const { plist_to_xml_free(memory); }
  };
  for (const Format format : formats) {
    const PropertyList::Data ours = write(sample(), format);
    plist_t node = nullptr;
    plist_from_memory(reinterpret_cast<const char*>(ours.data()),
                      static_cast<std::uint32_t>(ours.size()), &node);
    ASSERT_NE(node, nullptr);
    for (const Format other : formats) {
      char* buffer = nullptr;
      std::uint32_t length = 0;
      if (other == Format::Xml) {
        plist_to_xml(node, &buffer, &length);
      } else {
        plist_to_bin(node, &buffer, &length);
      }
      const std::unique_ptr<char, Free> theirs(buffer);
      EXPECT_EQ(read(PropertyList::Data(buffer, buffer + length)), sample());
    }
    plist_free(node);
  }
}

TEST_F(Serialization, FilesAreReadWithoutBlockingAndOnlyRegularOnes) {
  const ScratchFolder scratch;
  const auto fails = [this](const std::string& path) {
    const auto result = lists_.propertyListWithContentsOfFile(path);
    return result ? std::error_code() : result.error().code;
  };
  const PropertyList::Data good = write(sample(), Format::Binary);
  test::writeFile(scratch / "good\xFF", text(good));
  std::filesystem::create_symlink(scratch / "good\xFF", scratch / "link");
  const auto list = lists_.propertyListWithContentsOfFile(scratch / "link");
  ASSERT_TRUE(list);
  EXPECT_EQ(list.value(), sample());

  ASSERT_EQ(::mkfifo((scratch / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(fails(scratch / "pipe"), std::errc::invalid_argument);
  EXPECT_EQ(fails("/dev/zero"), std::errc::invalid_argument);
  EXPECT_EQ(fails(scratch.path()), std::errc::is_a_directory);
  EXPECT_EQ(fails(scratch / "missing"), std::errc::no_such_file_or_directory);
  test::writeFile(scratch / "empty", "");
  EXPECT_EQ(fails(scratch / "empty"), std::errc::invalid_argument);
  test::writeFile(scratch / "zeros", "");
  std::filesystem::resize_file(scratch / "zeros", 100'000'000);
  EXPECT_EQ(fails(scratch / "zeros"), std::errc::file_too_large);
  std::filesystem::resize_file(scratch / "zeros", PropertyListSerialization::maximumFileSize);
  EXPECT_EQ(fails(scratch / "zeros"), std::errc::invalid_argument);
  // A file of the kernel says it is empty and is not.
  EXPECT_EQ(fails("/proc/self/status"), std::errc::invalid_argument);
}

}  // namespace
}  // namespace tavrin
