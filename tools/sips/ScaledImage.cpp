#include "sips/ScaledImage.h"

#include <vips/vips.h>

#include <array>
#include <cstdlib>
#include <memory>

#include "sips/BitmapHeader.h"
#include "sips/Warnings.h"

namespace tavrin::sips {

namespace {

struct Release {
  template <typename Object>
  void operator()(Object* object) const {
    g_object_unref(object);
  }
};
using Image = std::unique_ptr<VipsImage, Release>;
using Source = std::unique_ptr<VipsSource, Release>;

// A low level with one cheap filter: pictures become as small as with a high level and no filter,
// in half the time.
constexpr int compressionLevel = 1;

// In this form all versions of the library hand it to the decoder.
constexpr const char* refusingDamage = "fail_on=error";

/// Without its modules the library starts in a small part of the time.
bool startLibrary(bool withModules) {
  if (!withModules) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): no other thread runs yet
    ::setenv("VIPSHOME", "/nonexistent", 1);
  }
  if (VIPS_INIT("sips") != 0) return false;
  vips_concurrency_set(1);
  vips_cache_set_max(0);
  // Only decoders that are held against hostile files, and the two that a format needs.
  vips_block_untrusted_set(TRUE);
  vips_operation_block_set("VipsForeignLoadSvg", FALSE);
  vips_operation_block_set("VipsForeignLoadMagick", withModules ? FALSE : TRUE);
  return true;
}

Source open(const ImageSource& source) {
  if (source.bytes.empty()) return Source(vips_source_new_from_file(source.path.c_str()));
  return Source(vips_source_new_from_memory(source.bytes.data(), source.bytes.size()));
}

/// The image as its header describes it; pixels are read when they are needed.
Image header(const ImageSource& source) {
  if (source.kind == ImageSource::Kind::MemoryByModule) {
    // That module reads no other kind of source.
    return Image(vips_image_new_from_buffer(source.bytes.data(), source.bytes.size(),
                                            refusingDamage, nullptr));
  }
  const Source opened = open(source);
  if (!opened) return nullptr;
  return Image(vips_image_new_from_source(opened.get(), refusingDamage, "access",
                                          VIPS_ACCESS_SEQUENTIAL, nullptr));
}

Image scaled(const ImageSource& source, VipsImage* whole, int width, int height) {
  VipsImage* result = nullptr;
  if (source.kind == ImageSource::Kind::MemoryByModule) {
    vips_thumbnail_image(whole, &result, width, "height", height, "size", VIPS_SIZE_FORCE, nullptr);
    return Image(result);
  }
  const Source opened = open(source);
  if (opened) {
    vips_thumbnail_source(opened.get(), &result, width, "height", height, "size", VIPS_SIZE_FORCE,
                          "option_string", refusingDamage, nullptr);
  }
  return Image(result);
}

/// A copy, for the library shares images, without what tells where and with what a picture was
/// taken.
Image withoutNotes(VipsImage* image) {
  constexpr std::array<const char*, 4> notes = {VIPS_META_EXIF_NAME, VIPS_META_XMP_NAME,
                                                VIPS_META_IPTC_NAME, VIPS_META_PHOTOSHOP_NAME};
  VipsImage* copy = nullptr;
  if (vips_copy(image, &copy, nullptr) != 0) return nullptr;
  for (const char* note : notes) vips_image_remove(copy, note);
  return Image(copy);
}

std::optional<icons::Bytes> encoded(VipsImage* image) {
  void* data = nullptr;
  std::size_t size = 0;
  if (vips_pngsave_buffer(image, &data, &size, "compression", compressionLevel, "filter",
                          VIPS_FOREIGN_PNG_FILTER_SUB, nullptr) != 0) {
    return std::nullopt;
  }
  const std::unique_ptr<void, decltype(&::g_free)> owner(data, ::g_free);
  return icons::Bytes(static_cast<const char*>(data), size);
}

}  // namespace

std::optional<icons::Bytes> scaledImage(const ImageSource& source, int width, int height,
                                        std::string& mistake) {
  Warnings warnings;
  const bool isStarted = startLibrary(source.needsModules());
  const Image whole = isStarted ? header(source) : nullptr;
  if (whole &&
      isTooLarge(vips_image_get_width(whole.get()), vips_image_get_height(whole.get()), mistake)) {
    return std::nullopt;
  }
  const Image result = whole ? scaled(source, whole.get(), width, height) : nullptr;
  const Image plain = result ? withoutNotes(result.get()) : nullptr;
  auto png = plain ? encoded(plain.get()) : std::nullopt;
  if (!png) mistake = warnings.reason();
  return png;
}

}  // namespace tavrin::sips
