#pragma once

#include <memory>

#include "foundation/PropertyList.h"
#include "foundation/Result.h"

namespace tavrin {

/// A picture that was decoded, as NSImage.
class Image {
 public:
  virtual ~Image() = default;

  /// The picture as a PNG file with square sides of at most `largestSide` pixels (1 or more):
  /// scaled down to fit, never up, and centred; what it does not fill is transparent. The same
  /// picture gives the same bytes.
  virtual Result<PropertyList::Data> squarePng(int largestSide) const = 0;
};

/// Makes pictures. Used on the main thread.
class ImageProvider {
 public:
  virtual ~ImageProvider() = default;

  /// A picture of more pixels than this is no image; decoded, that many take 128 MiB.
  static constexpr long long largestPixelCount = 32LL << 20;

  /// The picture in the bytes of an image file (initWithData:): TIFF, PNG, JPEG, SVG, ICNS and
  /// other formats that the system knows. Of several pictures in one file it is the largest.
  /// Nothing for anything else; the size is judged before memory is taken for the picture.
  virtual std::unique_ptr<Image> imageWithData(const PropertyList::Data& data) = 0;
};

}  // namespace tavrin
