#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "platform/Image.h"

namespace tavrin {

/// An image whose file's bytes are "image " and what it shows.
class FakeImage final : public Image {
 public:
  explicit FakeImage(std::string contents) : contents_(std::move(contents)) {}

  Result<PropertyList::Data> squarePng(int /*largestSide*/) const override {
    return PropertyList::Data(contents_.begin(), contents_.end());
  }
  const std::string& contents() const { return contents_; }

 private:
  std::string contents_;
};

class FakeImages final : public ImageProvider {
 public:
  std::unique_ptr<Image> imageWithData(const PropertyList::Data& data) override {
    constexpr std::string_view mark = "image ";
    const std::string text(data.begin(), data.end());
    if (!text.starts_with(mark)) return nullptr;
    return std::make_unique<FakeImage>(text.substr(mark.size()));
  }
};

/// What a FakeImage shows; "none" for null.
inline std::string descriptionOfImage(const Image* image) {
  return image == nullptr ? "none" : static_cast<const FakeImage*>(image)->contents();
}

}  // namespace tavrin
