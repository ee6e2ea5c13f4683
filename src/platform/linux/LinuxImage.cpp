#include "platform/linux/LinuxImage.h"

#include <QBuffer>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <algorithm>
#include <array>
#include <string>
#include <system_error>
#include <utility>

#include "platform/linux/SquarePicture.h"

namespace tavrin {

namespace {

// A file that says it holds more would only cost time.
constexpr int mostPictures = 64;

/// The formats that are read, by Qt's names. Compressed drawings are not: nothing bounds what they
/// grow to.
constexpr std::array formats = {"tiff", "png", "jpeg", "svg",  "icns",
                                "gif",  "bmp", "ico",  "webp", "jpg"};

class LinuxImage final : public Image {
 public:
  explicit LinuxImage(QImage picture) : picture_(std::move(picture)) {}

  int width() const override { return picture_.width(); }
  int height() const override { return picture_.height(); }
  Result<PropertyList::Data> squarePng(int largestSide) const override;
  Result<PropertyList::Data> tiffRepresentation() const override;

 private:
  QImage picture_;
};

QImage squareOf(const QImage& picture, int largestSide) {
  QImage scaled = picture;
  if (std::max(picture.width(), picture.height()) > largestSide) {
    scaled =
        picture.scaled(largestSide, largestSide, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  }
  return centredOnSquare(scaled, std::max(scaled.width(), scaled.height()));
}

enum class Compression { Usual, Lossless };

Result<PropertyList::Data> fileOf(const QImage& picture, const char* format,
                                  Compression compression) {
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  QImageWriter writer(&buffer, format);
  // Of TIFF this is LZW.
  if (compression == Compression::Lossless) writer.setCompression(1);
  if (!writer.write(picture)) {
    return SystemError{"write", "image (" + writer.errorString().toStdString() + ")",
                       std::make_error_code(std::errc::io_error)};
  }
  return PropertyList::Data(bytes.begin(), bytes.end());
}

Result<PropertyList::Data> LinuxImage::squarePng(int largestSide) const {
  return fileOf(squareOf(picture_, largestSide), "png", Compression::Usual);
}

Result<PropertyList::Data> LinuxImage::tiffRepresentation() const {
  // Colours of a palette and grey alike become RGBA, which every reader knows.
  return fileOf(picture_.convertToFormat(QImage::Format_RGBA8888), "tiff", Compression::Lossless);
}

bool isGzip(const PropertyList::Data& data) {
  return data.size() >= 2 && data[0] == 0x1f && data[1] == 0x8b;
}

long long pixelCount(const QSize& size) {
  return size.isEmpty() ? 0 : static_cast<long long>(size.width()) * size.height();
}

bool isWithinBounds(const QSize& size) {
  return !size.isEmpty() && pixelCount(size) <= ImageProvider::largestPixelCount;
}

bool holdsMore(const QImage& one, const QImage& other) {
  return pixelCount(one.size()) > pixelCount(other.size());
}

std::optional<ImageSize> sizeOf(const QSize& size) {
  return size.isEmpty() ? std::nullopt : std::optional(ImageSize{size.width(), size.height()});
}

/// Why there is no picture.
struct NoPicture {
  std::string text = "its format is not known";
  std::errc cause = std::errc::not_supported;
};

/// Reads the pictures of one file.
class PictureReader {
 public:
  explicit PictureReader(const PropertyList::Data& data) {
    bytes_ = QByteArray::fromRawData(reinterpret_cast<const char*>(data.data()),
                                     static_cast<qsizetype>(data.size()));
    buffer_.setBuffer(&bytes_);
    buffer_.open(QIODevice::ReadOnly);
    reader_.setDevice(&buffer_);
    reader_.setAutoTransform(true);
  }

  bool isKnownFormat() const {
    const QByteArray format = reader_.format();
    return std::any_of(formats.begin(), formats.end(),
                       [&](const char* known) { return format == known; });
  }

  /// The size of the largest picture within the bounds; nothing when a header tells none.
  std::optional<ImageSize> largestSize() {
    if (reader_.format() == "svg") return sizeOf(drawingSize());
    QSize largest;
    const int count = std::clamp(reader_.imageCount(), 1, mostPictures);
    for (int index = 0; index < count; ++index) {
      if (index > 0 && !reader_.jumpToImage(index)) break;
      const QSize size = reader_.size();
      if (isWithinBounds(size) && pixelCount(size) > pixelCount(largest)) largest = turned(size);
    }
    return sizeOf(largest);
  }

  /// The largest picture within the bounds; none with the reason.
  QImage readLargest(NoPicture& reason) {
    if (reader_.format() == "svg") return readDrawing(reason);
    QImage largest;
    const int count = std::clamp(reader_.imageCount(), 1, mostPictures);
    for (int index = 0; index < count; ++index) {
      if (index > 0 && !reader_.jumpToImage(index)) break;
      QImage picture = readWithinBounds(reason);
      if (holdsMore(picture, largest)) largest = std::move(picture);
    }
    return largest;
  }

 private:
  QImage readDrawing(NoPicture& reason) {
    reader_.setScaledSize(drawingSize());
    return read(reason);
  }

  QSize drawingSize() const {
    const int side = LinuxImageProvider::drawingSide;
    const QSize natural = reader_.size();
    return (natural.isEmpty() ? QSize(1, 1) : natural)
        .scaled(side, side, Qt::KeepAspectRatio)
        .expandedTo(QSize(1, 1));
  }

  QSize turned(const QSize& size) const {
    const bool isTurned =
        reader_.transformation().testFlag(QImageIOHandler::TransformationRotate90);
    return isTurned ? size.transposed() : size;
  }

  QImage read(NoPicture& reason) {
    QImage picture = reader_.read();
    if (picture.isNull()) reason.text = reader_.errorString().toStdString();
    return picture;
  }

  QImage readWithinBounds(NoPicture& reason) {
    // Without a size of its own, as in ICNS, a picture is bounded by Qt's limit.
    const QSize size = reader_.size();
    if (size.isValid() && !isWithinBounds(size)) {
      reason = {"it has too many pixels", std::errc::file_too_large};
      return {};
    }
    return read(reason);
  }

  QByteArray bytes_;
  QBuffer buffer_;
  QImageReader reader_;
};

/// The picture in the bytes of a file; null with the reason.
std::unique_ptr<Image> imageOf(const PropertyList::Data& data, NoPicture& reason) {
  if (data.empty()) reason.text = "it is empty";
  if (isGzip(data)) return nullptr;
  PictureReader reader(data);
  if (!reader.isKnownFormat()) return nullptr;
  QImage picture = reader.readLargest(reason);
  return picture.isNull() ? nullptr : std::make_unique<LinuxImage>(std::move(picture));
}

}  // namespace

std::unique_ptr<Image> LinuxImageProvider::imageWithData(const PropertyList::Data& data) {
  NoPicture reason;
  auto image = imageOf(data, reason);
  if (image) return image;
  log_.write("no image in " + std::to_string(data.size()) + " bytes of data: " + reason.text);
  return nullptr;
}

Result<std::unique_ptr<Image>> LinuxImageProvider::imageWithContentsOfFile(
    const std::string& path) {
  const auto data = fileManager_.contentsAtPath(path);
  if (!data) return data.error();
  NoPicture reason;
  auto image = imageOf(data.value(), reason);
  if (image) return image;
  return SystemError{"read the image (" + reason.text + ")", path,
                     std::make_error_code(reason.cause)};
}

std::optional<ImageSize> LinuxImageProvider::sizeOfImageWithData(const PropertyList::Data& data) {
  if (isGzip(data)) return std::nullopt;
  PictureReader reader(data);
  if (!reader.isKnownFormat()) return std::nullopt;
  if (const auto size = reader.largestSize()) return size;
  NoPicture reason;
  return sizeOf(PictureReader(data).readLargest(reason).size());
}

}  // namespace tavrin
