#pragma once

#include <memory>
#include <optional>
#include <string>

#include "foundation/PropertyList.h"
#include "foundation/Result.h"

namespace tavrin {

/// A picture that was decoded, as NSImage.
class Image {
 public:
  virtual ~Image() = default;

  /// The size in pixels.
  virtual int width() const = 0;
  virtual int height() const = 0;

  /// The picture as a PNG file with square sides of at most `largestSide` pixels (1 or more):
  /// scaled down to fit, never up, and centred; what it does not fill is transparent. The same
  /// picture gives the same bytes.
  virtual Result<PropertyList::Data> squarePng(int largestSide) const = 0;

  /// The picture as a TIFF file of its own size, with its transparency, compressed without loss
  /// (TIFFRepresentation). The same picture gives the same bytes.
  virtual Result<PropertyList::Data> tiffRepresentation() const = 0;
};

/// A picture's size in pixels.
struct ImageSize {
  int width = 0;
  int height = 0;
  bool operator==(const ImageSize&) const = default;
};

/// Makes pictures. Used on the main thread.
class ImageProvider {
 public:
  virtual ~ImageProvider() = default;

  /// A picture of more pixels than this is no image; decoded, that many take 128 MiB.
  static constexpr long long largestPixelCount = 32LL << 20;

  /// The picture in the bytes of an image file (initWithData:): TIFF, PNG, JPEG, SVG, ICNS and
  /// other formats that the system knows. Of several pictures in one file it is the largest.
  /// Null for anything else, which reaches the log with the reason; the size is judged before
  /// memory is taken for the picture.
  virtual std::unique_ptr<Image> imageWithData(const PropertyList::Data& data) = 0;

  /// The same for the file at `path` (absolute), which a started scope covers
  /// (initWithContentsOfFile:); never null. Fails with the cause why the file cannot be read, with
  /// file_too_large for too many pixels, and with not_supported for what is no image otherwise;
  /// what it is then stands in the operation. Nothing reaches the log.
  virtual Result<std::unique_ptr<Image>> imageWithContentsOfFile(const std::string& path) = 0;

  /// The size that `imageWithData` would give the picture, from the file's header, without decoding
  /// the picture where the format has such a header. Nothing where that tells none.
  virtual std::optional<ImageSize> sizeOfImageWithData(const PropertyList::Data& data) = 0;
};

}  // namespace tavrin
