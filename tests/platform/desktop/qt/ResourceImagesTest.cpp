#include <gtest/gtest.h>

#include <QFile>
#include <QImage>
#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "platform/linux/LinuxPropertyListSerialization.h"
#include "settings/SettingsKeys.h"

namespace tavrin {
namespace {

const std::string resources = TAVRIN_TEST_RESOURCES;
const std::string defaultPreferences = resources + "/DefaultPreferences.plist";

PropertyList::Array defaultRows(const char* listKey) {
  LinuxPropertyListSerialization serialization;
  const auto settings = serialization.propertyListWithContentsOfFile(defaultPreferences);
  if (!settings) return {};
  const PropertyList* rows = settings.value().find(listKey);
  const auto* array = rows == nullptr ? nullptr : rows->arrayIfArray();
  return array == nullptr ? PropertyList::Array() : *array;
}

/// An image of the resources by its name without ".png"; null when it cannot be read.
QImage imageNamed(const std::string& name) {
  return QImage(QFile::decodeName((resources + "/" + name + ".png").c_str()), "PNG");
}

bool showsSomething(const QImage& image) {
  const QImage pixels = image.convertToFormat(QImage::Format_ARGB32);
  for (int y = 0; y < pixels.height(); ++y) {
    for (int x = 0; x < pixels.width(); ++x) {
      if (qAlpha(pixels.pixel(x, y)) > 200) return true;
    }
  }
  return false;
}

bool isBlackAndClear(const QImage& image) {
  const QImage pixels = image.convertToFormat(QImage::Format_ARGB32);
  for (int y = 0; y < pixels.height(); ++y) {
    for (int x = 0; x < pixels.width(); ++x) {
      const QRgb pixel = pixels.pixel(x, y);
      if (qAlpha(pixel) != 0 && (pixel & 0xFFFFFFU) != 0) return false;
    }
  }
  return true;
}

TEST(ResourceImages, AreThereForEachNameThatTheProgramAsksFor) {
  std::vector<std::string> names{"Snapvane", "Tavrin"};
  names.insert(names.end(), functionIconNames.begin(), functionIconNames.end());
  names.insert(names.end(), commandIconNames.begin(), commandIconNames.end());
  names.insert(names.end(), alwaysOnActions.begin(), alwaysOnActions.end());
  for (const PropertyList& row : defaultRows(settings_key::arrOfOthers)) {
    names.push_back(row.stringForKey(record_field::action));
  }
  for (const PropertyList& row : defaultRows(settings_key::arrOfCreateNewFile)) {
    names.push_back(row.stringForKey(record_field::extension));
  }
  for (const std::string& name : names) {
    const QImage image = imageNamed(name);
    EXPECT_GE(image.width(), 64) << name;
    EXPECT_EQ(image.width(), image.height()) << name;
    EXPECT_TRUE(showsSomething(image)) << name;
  }
}

/// A colour in them would be lost, or would show where the program tints by the transparency.
TEST(ResourceImages, AreInBlackWhereTheWindowTintsThem) {
  std::size_t count = 0;
  for (const auto& file : std::filesystem::directory_iterator(resources)) {
    const std::string name = file.path().stem().string();
    if (!name.starts_with("sidebar-")) continue;
    const QImage image = imageNamed(name);
    EXPECT_EQ(image.size(), QSize(64, 64)) << name;
    EXPECT_TRUE(showsSomething(image)) << name;
    EXPECT_TRUE(isBlackAndClear(image)) << name;
    ++count;
  }
  EXPECT_EQ(count, 9U) << "one for each page";
}

TEST(ResourceImages, OfTheDefaultFoldersAreTiffFilesThatDiffer) {
  const PropertyList::Array rows = defaultRows(settings_key::arrOfCustomIcon);
  EXPECT_EQ(rows.size(), 10U);
  std::set<PropertyList::Data> different;
  for (const PropertyList& row : rows) {
    SCOPED_TRACE(row.stringForKey(record_field::displayName));
    const PropertyList* icon = row.find(record_field::icon);
    ASSERT_NE(icon, nullptr);
    const auto* data = icon->dataIfData();
    ASSERT_NE(data, nullptr);
    const QImage image = QImage::fromData(data->data(), static_cast<int>(data->size()), "TIFF");
    EXPECT_EQ(image.size(), QSize(256, 256));
    EXPECT_EQ(qAlpha(image.pixel(0, 0)), 0);
    EXPECT_EQ(qAlpha(image.pixel(20, 200)), 255);
    different.insert(*data);
  }
  EXPECT_EQ(different.size(), rows.size());
}

/// Each start of the program reads them.
TEST(ResourceImages, KeepTheDefaultSettingsSmall) {
  EXPECT_LT(std::filesystem::file_size(defaultPreferences), 250'000U);
}

}  // namespace
}  // namespace tavrin
