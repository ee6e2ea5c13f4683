#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "icons/Bytes.h"

namespace tavrin::icons {

/// A bitmap that an icon set may hold.
struct IconBitmap {
  /// The file's name in the folder of the set.
  std::string_view fileName;
  /// The four letters that it goes by in the container.
  std::string_view type;
  /// Its width and height.
  std::uint32_t pixels;
};

/// All ten, in the container's order: those for one pixel a point, and those ("@2x") for two.
inline constexpr std::array<IconBitmap, 10> iconBitmaps{{{"icon_16x16.png", "icp4", 16},
                                                         {"icon_32x32.png", "icp5", 32},
                                                         {"icon_16x16@2x.png", "ic11", 32},
                                                         {"icon_32x32@2x.png", "ic12", 64},
                                                         {"icon_128x128.png", "ic07", 128},
                                                         {"icon_128x128@2x.png", "ic13", 256},
                                                         {"icon_256x256.png", "ic08", 256},
                                                         {"icon_256x256@2x.png", "ic14", 512},
                                                         {"icon_512x512.png", "ic09", 512},
                                                         {"icon_512x512@2x.png", "ic10", 1024}}};

/// One image of a container.
struct IconElement {
  std::string type;
  Bytes data;
};

/// More than any container has reason to hold.
inline constexpr std::size_t mostContainerBytes = std::size_t{1} << 30;

/// True for what begins like a container.
bool isIconContainer(BytesView bytes);

/// A container of the elements: "icns", the length of all, and for each element its type, its
/// length with these eight bytes, and its data; lengths are four bytes, the highest first. Nothing
/// when it would be too large.
std::optional<Bytes> iconContainerOf(const std::vector<IconElement>& elements);

/// The elements of a container. Nothing, with the reason in `mistake`, when a length in it is
/// impossible.
std::optional<std::vector<IconElement>> elementsOf(BytesView container, std::string& mistake);

/// The PNG image of most pixels in a container; older kinds of images are for sizes that nobody
/// scales up. Nothing, with the reason in `mistake`, when there is none.
std::optional<Bytes> largestPng(BytesView container, std::string& mistake);

}  // namespace tavrin::icons
