#pragma once

namespace tavrin::icons {

/// The version of the product that the tools come with.
const char* version();

}  // namespace tavrin::icons
