#pragma once

#include <map>
#include <optional>
#include <string>

#include "platform/UniformTypes.h"

namespace tavrin {

/// Knows the extensions that a test gives it; a type conforms to what it begins with.
class FakeUniformTypes final : public UniformTypes {
 public:
  std::optional<std::string> preferredTypeForFilenameExtension(
      const std::string& extension) override {
    const auto type = types.find(extension);
    return type == types.end() ? std::nullopt : std::optional(type->second);
  }
  bool typeConformsTo(const std::string& type, const std::string& conformsTo) override {
    return type.starts_with(conformsTo);
  }

  std::map<std::string, std::string> types = {
      {"png", "public.image.png"}, {"JPG", "public.image.jpeg"}, {"txt", "public.text"}};
};

}  // namespace tavrin
