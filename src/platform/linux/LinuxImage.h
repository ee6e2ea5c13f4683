#pragma once

#include "platform/Image.h"
#include "platform/Log.h"

namespace tavrin {

/// Pictures by Qt's readers.
class LinuxImageProvider final : public ImageProvider {
 public:
  /// `log` outlives the provider.
  explicit LinuxImageProvider(Log& log) : log_(log) {}

  /// Of a drawing (SVG) the picture is made at `drawingSide` pixels on its longer side. Data that
  /// is no image reaches the log with the reason.
  std::unique_ptr<Image> imageWithData(const PropertyList::Data& data) override;

  static constexpr int drawingSide = 512;

 private:
  Log& log_;
};

}  // namespace tavrin
