#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>

#include "platform/Bundle.h"

namespace tavrin {

/// A program that is installed nowhere. Fields are what a test needs them to be.
class FakeBundle final : public Bundle {
 public:
  std::string bundlePath() const override { return programPath; }
  std::string resourcePath() const override { return resourceFolder; }
  std::optional<std::string> pathForResource(const std::string& name,
                                             const std::string& type) const override {
    return find(resources, name + "." + type);
  }
  std::string builtInPlugInsPath() const override { return plugInFolder; }
  std::optional<std::string> objectForInfoDictionaryKey(const std::string& key) const override {
    return find(information, key);
  }
  std::string localizedString(const std::string& key) const override {
    return translate ? translate(key) : find(translations, key).value_or(key);
  }
  std::string groupIdentifier() const override { return group; }
  Account account() const override { return owner; }

  std::string programPath = "/opt/tavrin/bin/tavrin";
  std::string resourceFolder = "/opt/tavrin/share/tavrin";
  std::string plugInFolder = "/opt/tavrin/lib/tavrin";
  std::string group = "TEST.group.tavrin";
  Account owner{"ada", "/home/ada"};
  /// The paths of the resources by "name.type".
  std::map<std::string, std::string> resources;
  std::map<std::string, std::string> information;
  std::map<std::string, std::string> translations;
  /// Takes the place of `translations` where it is set.
  std::function<std::string(const std::string&)> translate;

 private:
  static std::optional<std::string> find(const std::map<std::string, std::string>& entries,
                                         const std::string& key) {
    const auto entry = entries.find(key);
    return entry == entries.end() ? std::nullopt : std::optional(entry->second);
  }
};

}  // namespace tavrin
