#include "iconutil/Packing.h"

#include <dirent.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <optional>
#include <vector>

#include "icons/Files.h"
#include "icons/IconContainer.h"
#include "icons/Png.h"

namespace tavrin::iconutil {

namespace {

using icons::Bytes;
using icons::IconBitmap;
using icons::IconElement;

constexpr std::size_t mostBitmapBytes = std::size_t{1} << 26;

std::optional<std::vector<std::string>> visibleNamesIn(const std::string& folder) {
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(::opendir(folder.c_str()), ::closedir);
  if (!listing) {
    complain(icons::reasonFor("cannot open", folder));
    return std::nullopt;
  }
  std::vector<std::string> names;
  // NOLINTNEXTLINE(concurrency-mt-unsafe): the listing is this thread's own
  while (const dirent* entry = ::readdir(listing.get())) {
    if (entry->d_name[0] != '.') names.emplace_back(entry->d_name);
  }
  return names;
}

bool isNameOfBitmap(const std::string& name) {
  return std::any_of(icons::iconBitmaps.begin(), icons::iconBitmaps.end(),
                     [&name](const IconBitmap& bitmap) { return bitmap.fileName == name; });
}

std::optional<IconElement> elementFrom(const std::string& path, const IconBitmap& bitmap) {
  std::string mistake;
  auto bytes = icons::readFile(path, mostBitmapBytes, mistake);
  if (!bytes) {
    complain(mistake);
    return std::nullopt;
  }
  const auto size = icons::sizeOfPng(*bytes);
  if (size && size->width == bitmap.pixels && size->height == bitmap.pixels) {
    return IconElement{std::string(bitmap.type), std::move(*bytes)};
  }
  const std::string pixels = std::to_string(bitmap.pixels);
  complain(path + " is no PNG image of " + pixels + " x " + pixels + " pixels");
  return std::nullopt;
}

/// Nothing when anything is wrong with the set, with all that is wrong on standard error.
std::optional<std::vector<IconElement>> elementsIn(const std::string& folder) {
  const auto names = visibleNamesIn(folder);
  if (!names) return std::nullopt;
  bool isSound = true;
  for (const std::string& name : *names) {
    if (isNameOfBitmap(name)) continue;
    complain(folder + "/" + name + " is no bitmap of an icon set");
    isSound = false;
  }
  std::vector<IconElement> elements;
  for (const IconBitmap& bitmap : icons::iconBitmaps) {
    const std::string name(bitmap.fileName);
    if (std::find(names->begin(), names->end(), name) == names->end()) continue;
    auto element = elementFrom(folder + "/" + name, bitmap);
    isSound = isSound && element;
    if (element) elements.push_back(std::move(*element));
  }
  if (!isSound) return std::nullopt;
  return elements;
}

}  // namespace

bool pack(const std::string& iconSet, const std::string& output) {
  const auto elements = elementsIn(iconSet);
  if (!elements) return false;
  if (elements->empty()) {
    complain("there is no bitmap in " + iconSet);
    return false;
  }
  const std::size_t missing = icons::iconBitmaps.size() - elements->size();
  if (missing > 0) complain(std::to_string(missing) + " bitmaps are missing in " + iconSet);
  const auto container = icons::iconContainerOf(*elements);
  if (!container) {
    complain("the bitmaps in " + iconSet + " are too large");
    return false;
  }
  std::string mistake;
  if (icons::replaceFile(output, *container, mistake)) return true;
  complain(mistake);
  return false;
}

}  // namespace tavrin::iconutil
