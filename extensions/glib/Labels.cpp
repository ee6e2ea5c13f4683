#include "extensions/glib/Labels.h"

namespace tavrin {

std::string itemName(const MenuItem& item) {
  return "tavrin-" + item.identifier;
}

std::string itemLabel(const MenuItem& item) {
  std::string label;
  for (const char character : item.title) label.append(character == '_' ? 2 : 1, character);
  return label;
}

}  // namespace tavrin
