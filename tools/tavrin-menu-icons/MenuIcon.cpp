#include "MenuIcon.h"

#include <vips/vips.h>

#include <memory>

namespace tavrin {

namespace {

constexpr int side = 32;
constexpr std::uint64_t mostPixels = 33'554'432;

struct Release {
  void operator()(VipsImage* image) const { g_object_unref(image); }
};
using Image = std::unique_ptr<VipsImage, Release>;

/// The library's decoders take bytes that they do not change as mutable ones.
void* mutableBytes(const PropertyList::Data& data) {
  return const_cast<PropertyList::Data::value_type*>(data.data());
}

bool isSmallEnough(const PropertyList::Data& data) {
  const Image header(vips_image_new_from_buffer(data.data(), data.size(), "", nullptr));
  return header && static_cast<std::uint64_t>(vips_image_get_width(header.get())) *
                           static_cast<std::uint64_t>(vips_image_get_height(header.get())) <=
                       mostPixels;
}

std::optional<std::string> encoded(VipsImage* image) {
  void* data = nullptr;
  std::size_t size = 0;
  if (vips_pngsave_buffer(image, &data, &size, "strip", TRUE, nullptr) != 0) return std::nullopt;
  const std::unique_ptr<void, decltype(&::g_free)> owner(data, ::g_free);
  return std::string(static_cast<const char*>(data), size);
}

}  // namespace

bool startImageLibrary() {
  if (VIPS_INIT("tavrin-menu-icons") != 0) return false;
  vips_concurrency_set(1);
  vips_cache_set_max(0);
  // Only decoders that are held against hostile files.
  vips_block_untrusted_set(TRUE);
  return true;
}

std::optional<std::string> menuIcon(const PropertyList::Data& image, std::string& mistake) {
  std::optional<std::string> png;
  VipsImage* small = nullptr;
  if (isSmallEnough(image) && vips_thumbnail_buffer(mutableBytes(image), image.size(), &small, side,
                                                    "height", side, nullptr) == 0) {
    png = encoded(Image(small).get());
  }
  if (!png) mistake = vips_error_buffer();
  vips_error_clear();
  return png;
}

}  // namespace tavrin
