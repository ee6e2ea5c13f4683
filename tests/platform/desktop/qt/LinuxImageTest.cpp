#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QBuffer>
#include <QImage>
#include <QImageWriter>
#include <QPainter>
#include <string>

#include "platform/linux/LinuxImage.h"
#include "tests/platform/desktop/DesktopSession.h"
#include "tests/support/FakeFileManager.h"
#include "tests/support/FakeLog.h"

namespace tavrin {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

QImage redPicture(int width, int height) {
  QImage picture(width, height, QImage::Format_ARGB32);
  picture.fill(Qt::red);
  return picture;
}

PropertyList::Data written(const QImage& picture, const char* format) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QImageWriter writer(&buffer, format);
  EXPECT_TRUE(writer.write(picture)) << format << ": " << writer.errorString().toStdString();
  return {bytes.begin(), bytes.end()};
}

PropertyList::Data bytesOf(const std::string& text) {
  return {text.begin(), text.end()};
}

/// What ImageMagick, another implementation, makes of its arguments.
PropertyList::Data converted(std::vector<std::string> arguments, const std::string& name) {
  const test::TemporaryFolder folder;
  arguments.insert(arguments.begin(), "convert");
  arguments.push_back(folder / name);
  EXPECT_EQ(test::ChildProcess(arguments).wait(), 0);
  return bytesOf(test::readFile(folder / name));
}

bool isRed(const QColor& color) {
  return color.alpha() == 255 && color.red() > 230 && color.green() < 25 && color.blue() < 25;
}

class LinuxImageTest : public testing::Test {
 protected:
  /// The picture that the PNG shows; a null one when the data is no image.
  QImage squareOf(const PropertyList::Data& data, int side = 512) {
    const auto image = provider_.imageWithData(data);
    if (!image) return {};
    const auto png = image->squarePng(side);
    EXPECT_TRUE(png);
    EXPECT_EQ(png.value(), image->squarePng(side).value());
    QImage square;
    const bool isPng =
        square.loadFromData(png.value().data(), static_cast<int>(png.value().size()), "png");
    EXPECT_TRUE(isPng);
    return square;
  }

  FakeLog log_;
  FakeFileManager fileManager_;
  LinuxImageProvider provider_{fileManager_, log_};
};

TEST_F(LinuxImageTest, readsTheFormatsOfIcons) {
  const std::string drawing =
      "<svg xmlns='http://www.w3.org/2000/svg' width='10' height='10'>"
      "<rect width='10' height='10' fill='#f00'/></svg>";
  const std::vector<std::pair<const char*, PropertyList::Data>> files = {
      {"TIFF", converted({"-size", "64x64", "xc:red"}, "a.tiff")},
      {"PNG", converted({"-size", "64x64", "xc:red"}, "a.png")},
      {"JPEG", converted({"-size", "64x64", "xc:red"}, "a.jpg")},
      {"GIF", converted({"-size", "64x64", "xc:red"}, "a.gif")},
      {"ICNS", written(redPicture(128, 128), "icns")},
      {"SVG", bytesOf(drawing)},
      {"SVG with a head", bytesOf("<?xml version='1.0'?>\n<!-- a -->\n" + drawing)},
  };
  for (const auto& [format, data] : files) {
    const QImage square = squareOf(data);
    ASSERT_FALSE(square.isNull()) << format << ": " << log_.lines().back();
    EXPECT_EQ(square.width(), square.height()) << format;
    EXPECT_TRUE(isRed(square.pixelColor(square.width() / 2, square.height() / 2))) << format;
  }
  EXPECT_EQ(squareOf(bytesOf(drawing)).width(), 512);
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(LinuxImageTest, tellsTheSizeThatThePictureHas) {
  const std::vector<std::pair<PropertyList::Data, ImageSize>> files = {
      {written(redPicture(30, 20), "png"), {30, 20}},
      {written(redPicture(30, 20), "tiff"), {30, 20}},
      {written(redPicture(128, 128), "icns"), {128, 128}},
      {converted({"-size", "30x20", "xc:red", "-orient", "RightTop"}, "a.tiff"), {20, 30}},
      {converted({"-size", "16x16", "xc:red", "-size", "48x32", "xc:red"}, "a.tiff"), {48, 32}},
      {bytesOf("<svg xmlns='http://www.w3.org/2000/svg' width='10' height='5'/>"), {512, 256}},
  };
  for (const auto& [data, size] : files) {
    const auto image = provider_.imageWithData(data);
    ASSERT_TRUE(image);
    EXPECT_EQ((ImageSize{image->width(), image->height()}), size);
    EXPECT_EQ(provider_.sizeOfImageWithData(data), size) << size.width;
  }
  EXPECT_FALSE(provider_.sizeOfImageWithData(bytesOf("text")));
  EXPECT_FALSE(provider_.sizeOfImageWithData({}));
}

TEST_F(LinuxImageTest, readsNoMoreThanTheHeaderForTheSize) {
  PropertyList::Data data = written(redPicture(300, 200), "png");
  data.resize(data.size() / 2);
  EXPECT_EQ(provider_.sizeOfImageWithData(data), (ImageSize{300, 200}));
  EXPECT_FALSE(provider_.imageWithData(data));
}

TEST_F(LinuxImageTest, theTiffFileHasEveryPixelAndIsCompressed) {
  QImage picture(200, 100, QImage::Format_RGBA8888);
  for (int y = 0; y < 100; ++y) {
    for (int x = 0; x < 200; ++x) picture.setPixel(x, y, qRgba(x / 8, y, 77, 255 - y));
  }
  const auto image = provider_.imageWithData(written(picture, "png"));
  const auto tiff = image->tiffRepresentation();
  ASSERT_TRUE(tiff);
  EXPECT_EQ(tiff.value(), image->tiffRepresentation().value());
  EXPECT_LT(tiff.value().size(), 200U * 100U * 4U * 2U / 3U);
  const test::TemporaryFolder folder;
  test::writeFile(folder / "a.tiff", std::string(tiff.value().begin(), tiff.value().end()));
  const PropertyList::Data pixels = converted({folder / "a.tiff", "-depth", "8"}, "a.rgba");
  EXPECT_EQ(pixels,
            PropertyList::Data(picture.constBits(), picture.constBits() + picture.sizeInBytes()));
}

TEST_F(LinuxImageTest, readsAFileAndTellsWhyThereIsNone) {
  const PropertyList::Data png = written(redPicture(8, 8), "png");
  fileManager_.addFile("/picture.png", std::string(png.begin(), png.end()));
  const auto image = provider_.imageWithContentsOfFile("/picture.png");
  ASSERT_TRUE(image);
  EXPECT_EQ(image.value()->width(), 8);

  QImage vast(9000, 9000, QImage::Format_Mono);
  vast.fill(0);
  const PropertyList::Data large = written(vast, "png");
  fileManager_.addFile("/vast.png", std::string(large.begin(), large.end()));
  fileManager_.addFile("/cut.png", std::string(png.begin(), png.begin() + 40));
  fileManager_.addFile("/text.png", "text");
  fileManager_.addFile("/packed.png", "\x1f\x8b\x08");
  fileManager_.addFile("/empty.png");
  fileManager_.addFolder("/folder.png");
  for (const auto& [path, cause, text] :
       {std::tuple("/vast.png", std::errc::file_too_large, "too many pixels"),
        {"/cut.png", std::errc::not_supported, "("},
        {"/text.png", std::errc::not_supported, "format is not known"},
        {"/packed.png", std::errc::not_supported, "format is not known"},
        {"/empty.png", std::errc::not_supported, "empty"},
        {"/folder.png", std::errc::is_a_directory, "read"},
        {"/missing.png", std::errc::no_such_file_or_directory, "read"}}) {
    const auto none = provider_.imageWithContentsOfFile(path);
    ASSERT_FALSE(none) << path;
    EXPECT_EQ(none.error().code, cause) << none.error().describe();
    EXPECT_EQ(none.error().path, path);
    EXPECT_THAT(none.error().operation, HasSubstr(text));
  }
  EXPECT_THAT(log_.lines(), IsEmpty());
}

TEST_F(LinuxImageTest, takesTheLargestOfSeveralPictures) {
  const auto data = converted(
      {"-size", "16x16", "xc:blue", "-size", "48x48", "xc:red", "-size", "32x32", "xc:blue"},
      "a.tiff");
  const QImage square = squareOf(data);
  EXPECT_EQ(square.size(), QSize(48, 48));
  EXPECT_TRUE(isRed(square.pixelColor(24, 24)));
}

TEST_F(LinuxImageTest, centresOnATransparentSquareAndNeverScalesUp) {
  const QImage wide = squareOf(written(redPicture(100, 50), "png"));
  EXPECT_EQ(wide.size(), QSize(100, 100));
  EXPECT_EQ(wide.pixelColor(50, 10).alpha(), 0);
  EXPECT_EQ(wide.pixelColor(50, 90).alpha(), 0);
  EXPECT_TRUE(isRed(wide.pixelColor(50, 50)));
  const QImage scaled = squareOf(written(redPicture(300, 1200), "png"), 100);
  EXPECT_EQ(scaled.size(), QSize(100, 100));
  EXPECT_EQ(scaled.pixelColor(20, 50).alpha(), 0);
  EXPECT_TRUE(isRed(scaled.pixelColor(50, 2)));
  EXPECT_EQ(squareOf(written(redPicture(5000, 1), "png")).size(), QSize(512, 512));
}

TEST_F(LinuxImageTest, refusesWhatIsNoImage) {
  PropertyList::Data truncated = written(redPicture(64, 64), "png");
  truncated.resize(40);
  for (const auto& data : {PropertyList::Data(), bytesOf("text"), bytesOf("<svg"),
                           bytesOf("\x1f\x8b\x08"), bytesOf("icns"), bytesOf("II*"), truncated}) {
    EXPECT_FALSE(provider_.imageWithData(data));
  }
  EXPECT_EQ(log_.lines().size(), 7U);
}

TEST_F(LinuxImageTest, refusesAPictureThatWouldGrowTooLargeUnread) {
  QImage vast(9000, 9000, QImage::Format_Mono);
  vast.fill(0);
  const PropertyList::Data png = written(vast, "png");
  EXPECT_LT(png.size(), 1U << 20U);
  EXPECT_FALSE(provider_.imageWithData(png));
  EXPECT_THAT(log_.lines().back(), HasSubstr("too many pixels"));
  const std::string huge =
      "<svg xmlns='http://www.w3.org/2000/svg' width='1000000' height='1000000'>"
      "<rect width='1000000' height='1000000' fill='#f00'/></svg>";
  EXPECT_EQ(squareOf(bytesOf(huge)).size(), QSize(512, 512));
}

}  // namespace
}  // namespace tavrin
