#pragma once

#include <optional>
#include <string>

namespace tavrin {

/// Types that the core asks for, as Uniform Type Identifiers.
namespace uniform_type {

inline constexpr const char* image = "public.image";

}  // namespace uniform_type

/// The types of files by their names. No file is looked at.
class UniformTypes {
 public:
  virtual ~UniformTypes() = default;

  /// The type, as the system names it, that a file-name extension without "." stands for
  /// (UTTypeCreatePreferredIdentifierForTag); nothing for one that is empty or that the system does
  /// not know. Letters may be of either case.
  virtual std::optional<std::string> preferredTypeForFilenameExtension(
      const std::string& extension) = 0;

  /// True when a type that preferredTypeForFilenameExtension gave is `conformsTo`, one of
  /// uniform_type, or a kind of it (UTTypeConformsTo).
  virtual bool typeConformsTo(const std::string& type, const std::string& conformsTo) = 0;
};

}  // namespace tavrin
