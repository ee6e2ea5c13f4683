#pragma once

#include <string>
#include <vector>

namespace tavrin {

/// What is installed, as Launch Services.
class LaunchServices {
 public:
  virtual ~LaunchServices() = default;

  /// The installed applications of a bundle identifier ("com.example.Editor"), as the system names
  /// them (a bundle's path, a desktop entry's id); empty when there is none.
  virtual std::vector<std::string> applicationsForBundleIdentifier(
      const std::string& bundleIdentifier) = 0;
};

}  // namespace tavrin
