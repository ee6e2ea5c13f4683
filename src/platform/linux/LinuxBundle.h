#pragma once

#include "platform/Bundle.h"

namespace tavrin {

/// The installation around the running program.
class LinuxBundle final : public Bundle {
 public:
  /// Of a program that users start.
  LinuxBundle();

  /// Of another one: `programFolder`, an absolute path, is where those that users start stand. Its
  /// texts are left in English.
  explicit LinuxBundle(std::string programFolder);

  std::string bundlePath() const override;
  std::string resourcePath() const override;
  std::optional<std::string> pathForResource(const std::string& name,
                                             const std::string& type) const override;
  std::string builtInPlugInsPath() const override;
  std::optional<std::string> objectForInfoDictionaryKey(const std::string& key) const override;
  std::string localizedString(const std::string& key) const override;
  std::string groupIdentifier() const override;
  Account account() const override;

 private:
  std::string programFolder_;
  Account account_;
};

}  // namespace tavrin
