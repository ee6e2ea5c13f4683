#pragma once

#include <string>
#include <string_view>

namespace tavrin::icons {

/// File contents: any bytes.
using Bytes = std::string;
using BytesView = std::string_view;

}  // namespace tavrin::icons
