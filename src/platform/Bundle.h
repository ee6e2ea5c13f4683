#pragma once

#include <optional>
#include <string>

#include "foundation/PathHelpers.h"

namespace tavrin {

/// The program as it is installed, as NSBundle's main bundle, and the account that runs it.
class Bundle {
 public:
  virtual ~Bundle() = default;

  /// The path of the program itself, absolute, with links resolved.
  virtual std::string bundlePath() const = 0;

  /// The folder of the resources.
  virtual std::string resourcePath() const = 0;

  /// The path of the resource "name.type"; nothing when there is no such file.
  virtual std::optional<std::string> pathForResource(const std::string& name,
                                                     const std::string& type) const = 0;

  /// The folder of the helpers that come with the program.
  virtual std::string builtInPlugInsPath() const = 0;

  /// An entry of the bundle's information: "CFBundleDisplayName", "CFBundleName",
  /// "CFBundleShortVersionString". Nothing for any other key.
  virtual std::optional<std::string> objectForInfoDictionaryKey(const std::string& key) const = 0;

  /// The text in the user's language; `key`, the English wording, when there is no translation.
  virtual std::string localizedString(const std::string& key) const = 0;

  /// The identifier of the application group that the program's settings are shared in.
  virtual std::string groupIdentifier() const = 0;

  virtual Account account() const = 0;
};

}  // namespace tavrin
