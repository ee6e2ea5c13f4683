#pragma once

#include <string>

namespace tavrin::iconutil {

/// Packs the bitmaps of the folder `iconSet` into the icon file `output`. False, after its reasons
/// on standard error, when none is there, a name is none of a bitmap's, or a bitmap is no PNG image
/// of its size; `output` is then as it was.
bool pack(const std::string& iconSet, const std::string& output);

/// Puts the bitmaps of the icon file `file` into the new folder `output`. False, after the reason
/// on standard error, when it is no icon file, holds no such bitmap, or the folder cannot be made;
/// then nothing is left of it.
bool unpack(const std::string& file, const std::string& output);

/// One line on standard error.
void complain(const std::string& message);

}  // namespace tavrin::iconutil
