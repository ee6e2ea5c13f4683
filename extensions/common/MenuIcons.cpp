#include "extensions/common/MenuIcons.h"

#include <unistd.h>

#include <utility>

#include "extensions/common/HelperProgram.h"
#include "foundation/PathString.h"
#include "platform/linux/DefaultsReader.h"

namespace tavrin {

MenuIcons::MenuIcons(std::string folder, std::string program)
    : folder_(std::move(folder)), program_(std::move(program)) {}

std::string MenuIcons::fileOfIcon(const PropertyList& icon) {
  const PropertyList::Data* data = icon.dataIfData();
  if (data == nullptr || data->empty()) return {};
  const std::string digest = DefaultsReader::digestOf(*data);
  std::string path = appendingPathComponent(folder_, digest + ".png");
  if (::access(path.c_str(), R_OK) == 0) {
    // It may be removed while the menu does not have the icon.
    asked_.erase(digest);
    return path;
  }
  isMissing_ = asked_.insert(digest).second || isMissing_;
  return {};
}

void MenuIcons::makeMissing(std::function<void()> made) {
  if (!std::exchange(isMissing_, false)) return;
  runHelperProgram({program_, folder_}, {},
                   [this, made = std::move(made), alive = std::weak_ptr(alive_)](bool succeeded) {
                     if (alive.expired()) return;
                     if (succeeded) return made();
                     asked_.clear();
                   });
}

}  // namespace tavrin
