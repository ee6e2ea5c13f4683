#include "platform/linux/LinuxUniformTypes.h"

#include "platform/linux/GLibPointers.h"

namespace tavrin {

std::optional<std::string> LinuxUniformTypes::preferredTypeForFilenameExtension(
    const std::string& extension) {
  // No pattern of the database has a byte that is no text or separates folders.
  if (extension.empty() || extension.find('/') != std::string::npos ||
      g_utf8_validate(extension.data(), static_cast<gssize>(extension.size()), nullptr) == FALSE) {
    return std::nullopt;
  }
  const GLibPointer<char> type(
      g_content_type_guess(("name." + extension).c_str(), nullptr, 0, nullptr));
  if (g_content_type_is_unknown(type.get()) != FALSE) return std::nullopt;
  return std::string(type.get());
}

bool LinuxUniformTypes::typeConformsTo(const std::string& type, const std::string& conformsTo) {
  return conformsTo == uniform_type::image && g_content_type_is_a(type.c_str(), "image/*") != FALSE;
}

}  // namespace tavrin
