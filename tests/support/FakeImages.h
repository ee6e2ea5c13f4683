#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/Image.h"

namespace tavrin {

/// An image whose file's bytes are "image " and what it shows.
class FakeImage final : public Image {
 public:
  explicit FakeImage(std::string contents, ImageSize size = {}, PropertyList::Data tiff = {})
      : contents_(std::move(contents)), size_(size), tiff_(std::move(tiff)) {}

  int width() const override { return size_.width; }
  int height() const override { return size_.height; }

  Result<PropertyList::Data> squarePng(int /*largestSide*/) const override {
    return PropertyList::Data(contents_.begin(), contents_.end());
  }
  Result<PropertyList::Data> tiffRepresentation() const override {
    if (!tiff_.empty()) return tiff_;
    return SystemError{"write", "image", std::make_error_code(std::errc::io_error)};
  }
  const std::string& contents() const { return contents_; }

 private:
  std::string contents_;
  ImageSize size_;
  PropertyList::Data tiff_;
};

class FakeImages final : public ImageProvider {
 public:
  std::unique_ptr<Image> imageWithData(const PropertyList::Data& data) override {
    const auto shown = contentsOf(data);
    if (!shown) return nullptr;
    return std::make_unique<FakeImage>(*shown, sizeOf(*shown), tiffOf(*shown));
  }

  Result<std::unique_ptr<Image>> imageWithContentsOfFile(const std::string& path) override {
    const auto failure = [&path](std::errc cause) {
      return SystemError{"read the image", path, std::make_error_code(cause)};
    };
    if (!readFile) return failure(std::errc::no_such_file_or_directory);
    const auto bytes = readFile(path);
    if (!bytes) return bytes.error();
    auto image = imageWithData(bytes.value());
    if (!image) return failure(std::errc::not_supported);
    return image;
  }

  std::optional<ImageSize> sizeOfImageWithData(const PropertyList::Data& data) override {
    const auto shown = contentsOf(data);
    return shown ? std::optional(sizeOf(*shown)) : std::nullopt;
  }

  /// The size of every image but those of `sizes`, which has them by what they show.
  ImageSize usualSize{16, 16};
  std::map<std::string, ImageSize> sizes;
  /// The TIFF files of images by what they show; empty bytes fail. The others' are "image " and
  /// what they show.
  std::map<std::string, PropertyList::Data> tiffs;
  /// Reads a file through the started scopes.
  std::function<Result<PropertyList::Data>(const std::string& path)> readFile;

 private:
  static std::optional<std::string> contentsOf(const PropertyList::Data& data) {
    constexpr std::string_view mark = "image ";
    const std::string text(data.begin(), data.end());
    if (!text.starts_with(mark)) return std::nullopt;
    return text.substr(mark.size());
  }
  ImageSize sizeOf(const std::string& shown) const {
    const auto found = sizes.find(shown);
    return found == sizes.end() ? usualSize : found->second;
  }
  PropertyList::Data tiffOf(const std::string& shown) const {
    const auto found = tiffs.find(shown);
    if (found != tiffs.end()) return found->second;
    const std::string text = "image " + shown;
    return {text.begin(), text.end()};
  }
};

/// What a FakeImage shows; "none" for null.
inline std::string descriptionOfImage(const Image* image) {
  return image == nullptr ? "none" : static_cast<const FakeImage*>(image)->contents();
}

}  // namespace tavrin
