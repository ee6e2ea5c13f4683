#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "icons/Files.h"
#include "icons/IconContainer.h"
#include "icons/Png.h"
#include "iconutil/Packing.h"

namespace tavrin::iconutil {

namespace {

using icons::IconBitmap;
using icons::IconElement;

constexpr mode_t everybodysChoice = 0777;

const IconBitmap* bitmapOf(const IconElement& element) {
  const auto* const found =
      std::find_if(icons::iconBitmaps.begin(), icons::iconBitmaps.end(),
                   [&element](const IconBitmap& bitmap) { return bitmap.type == element.type; });
  return found != icons::iconBitmaps.end() && icons::sizeOfPng(element.data) ? found : nullptr;
}

/// How many bitmaps were written; nothing when one could not be.
std::optional<std::size_t> writeBitmaps(const std::vector<IconElement>& elements,
                                        const std::string& folder) {
  std::size_t written = 0;
  std::string mistake;
  for (const IconElement& element : elements) {
    const IconBitmap* bitmap = bitmapOf(element);
    if (bitmap == nullptr) {
      complain("left out an element that is no PNG bitmap: " + element.type);
      continue;
    }
    if (!icons::replaceFile(folder + "/" + std::string(bitmap->fileName), element.data, mistake)) {
      complain(mistake);
      return std::nullopt;
    }
    ++written;
  }
  return written;
}

}  // namespace

bool unpack(const std::string& file, const std::string& output) {
  std::string mistake;
  const auto bytes = icons::readFile(file, icons::mostContainerBytes, mistake);
  if (!bytes) {
    complain(mistake);
    return false;
  }
  const auto elements = icons::elementsOf(*bytes, mistake);
  if (!elements) {
    complain(file + ": " + mistake);
    return false;
  }
  const std::string folder = icons::temporaryPathBeside(output);
  if (::mkdir(folder.c_str(), everybodysChoice) != 0) {
    complain(icons::reasonFor("cannot make", output));
    return false;
  }
  const auto written = writeBitmaps(*elements, folder);
  if (written == std::size_t{0}) complain("there is no PNG bitmap in " + file);
  if (written.value_or(0) > 0) {
    // The system puts a folder in the place of nothing or of an empty folder only.
    if (::rename(folder.c_str(), output.c_str()) == 0) return true;
    complain(icons::reasonFor("cannot make", output));
  }
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
  return false;
}

}  // namespace tavrin::iconutil
