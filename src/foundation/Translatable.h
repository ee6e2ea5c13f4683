#pragma once

namespace tavrin {

/// Marks the English wording of a text that is looked up elsewhere, so that translators get to see
/// it. Returns `key` as it is.
constexpr const char* translatable(const char* key) {
  return key;
}

}  // namespace tavrin
