#pragma once

#include <functional>
#include <memory>
#include <set>
#include <string>

#include "foundation/PropertyList.h"

namespace tavrin {

/// The small images by which the menu shows the icons that users keep, which are large. They are
/// files in the cache, named by the icon's digest; a program of its own makes those that are
/// missing.
class MenuIcons {
 public:
  /// The folder of the images, absolute, and the program that makes them.
  MenuIcons(std::string folder, std::string program);

  /// The path of the image for the data of an icon; "" when there is none yet: then it is made
  /// after `makeMissing`.
  std::string fileOfIcon(const PropertyList& icon);

  /// Has the images made that `fileOfIcon` missed, each once; `made` is called when there are new
  /// ones.
  void makeMissing(std::function<void()> made);

 private:
  std::string folder_;
  std::string program_;
  bool isMissing_ = false;
  /// Digests of icons that no image could be made for are among them.
  std::set<std::string> asked_;
  std::shared_ptr<const bool> alive_ = std::make_shared<bool>(true);
};

}  // namespace tavrin
