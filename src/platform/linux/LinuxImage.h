#pragma once

#include "platform/FileManager.h"
#include "platform/Image.h"
#include "platform/Log.h"

namespace tavrin {

/// Pictures by Qt's readers.
class LinuxImageProvider final : public ImageProvider {
 public:
  /// Both outlive the provider.
  LinuxImageProvider(const FileManager& fileManager, Log& log)
      : fileManager_(fileManager), log_(log) {}

  /// Of a drawing (SVG) the picture is made at `drawingSide` pixels on its longer side.
  std::unique_ptr<Image> imageWithData(const PropertyList::Data& data) override;

  Result<std::unique_ptr<Image>> imageWithContentsOfFile(const std::string& path) override;

  /// ICNS, whose header tells no size, is decoded.
  std::optional<ImageSize> sizeOfImageWithData(const PropertyList::Data& data) override;

  static constexpr int drawingSide = 512;

 private:
  const FileManager& fileManager_;
  Log& log_;
};

}  // namespace tavrin
