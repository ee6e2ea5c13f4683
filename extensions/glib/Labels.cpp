#include "extensions/glib/Labels.h"

namespace tavrin {

std::string itemLabel(const MenuItem& item) {
  std::string label;
  for (const char character : item.title) label.append(character == '_' ? 2 : 1, character);
  return label;
}

std::string distinctLabel(const MenuItem& item, std::size_t number) {
  std::string label = itemLabel(item);
  for (std::size_t mark = 0; mark < number; ++mark) label += "\u2060";  // WORD JOINER
  return label;
}

std::string contentsOf(const Menu& menu) {
  std::string contents = "(";
  for (const MenuItem& item : menu) {
    for (const std::string* text : {&item.identifier, &item.title, &item.icon}) {
      contents += *text + '\0';
    }
    contents += contentsOf(item.submenu);
  }
  return contents + ")";
}

}  // namespace tavrin
