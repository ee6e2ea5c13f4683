#include "platform/linux/HiddenNames.h"

#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <utility>

#include "platform/linux/FileCreation.h"
#include "platform/linux/FileReplacement.h"
#include "platform/linux/ItemRedraw.h"
#include "platform/linux/SystemErrors.h"
#include "platform/linux/TextLines.h"

namespace tavrin {

namespace {

constexpr std::size_t largestList = std::size_t{64} << 20;
// A window redraws each item that is touched; with more it had better be loaded anew.
constexpr std::size_t mostItemsTouched = 1000;

}  // namespace

HiddenNames::HiddenNames(int folder, std::string folderPath, const PartialItems& partials)
    : folder_(folder), folderPath_(std::move(folderPath)), partials_(partials) {}

ItemReference HiddenNames::listFile() const {
  return {folder_, hiddenListName, folderPath_ + "/" + hiddenListName};
}

Result<std::string> HiddenNames::read() const {
  const auto contents = readFile(listFile(), largestList);
  if (contents) return std::string(contents.value().begin(), contents.value().end());
  if (contents.error().code == std::errc::no_such_file_or_directory) return std::string();
  return contents.error();
}

Status HiddenNames::load() {
  if (isLoaded_) return success();
  auto list = read();
  if (!list) return list.error();
  list_ = std::move(list).value();
  forEachLine(list_, [&](std::string_view line) { names_.insert(line); });
  isLoaded_ = true;
  // Before, nothing can have been shown, which asks for the list.
  for (std::string& name : changes_.names(SIZE_MAX)) newNames_.insert(std::move(name));
  return success();
}

Result<bool> HiddenNames::contains(const std::string& name) {
  if (Status loaded = load(); !loaded) return loaded.error();
  return names_.contains(name) || newNames_.contains(name);
}

Status HiddenNames::set(const std::string& name, IsHidden isHidden) {
  if (name.find('\n') != std::string::npos) {
    if (isHidden == IsHidden::No) return success();
    return systemError("hide", folderPath_ + "/" + name, std::errc::invalid_argument);
  }
  if (isHidden == IsHidden::No) {
    const auto isListed = contains(name);
    if (!isListed) return isListed.error();
    if (!isListed.value()) return success();
    names_.erase(name);
    newNames_.erase(name);
  } else if (isLoaded_) {
    newNames_.insert(name);
  }
  changes_.add(name, isHidden);
  return success();
}

Status HiddenNames::write() {
  if (changes_.isEmpty()) return success();
  const HiddenNameChanges changes = std::exchange(changes_, {});
  forget();
  auto list = read();
  if (!list) return list.error();
  const std::string changed = changes.appliedTo(list.value());
  if (changed == list.value()) return success();
  list = std::string();
  if (changed.empty()) {
    if (::unlinkat(folder_, hiddenListName, 0) != 0) return systemError("remove", folderPath_);
  } else {
    Status replaced =
        replaceFile(listFile(), PropertyList::Data(changed.begin(), changed.end()), partials_);
    if (!replaced) return replaced;
  }
  touchItems(changes.names(mostItemsTouched));
  return success();
}

void HiddenNames::touchItems(const std::vector<std::string>& names) const {
  if (names.size() == mostItemsTouched) return;
  for (const std::string& name : names) redrawItem(folder_, name);
}

void HiddenNames::forget() {
  changes_ = {};
  isLoaded_ = false;
  names_ = {};
  newNames_ = {};
  list_ = std::string();
}

}  // namespace tavrin
