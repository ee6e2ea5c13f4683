#pragma once

#include <string_view>

namespace tavrin {

/// Whether bytes are well-formed UTF-8 (Unicode, table 3-7): no overlong form, no surrogate,
/// nothing above U+10FFFF, nothing cut short.
bool isUtf8(std::string_view bytes);

}  // namespace tavrin
