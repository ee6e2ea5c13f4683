#include "platform/linux/panel/SaveName.h"

#include <strings.h>

#include <climits>

#include "foundation/PathString.h"

namespace tavrin {

namespace {

bool hasType(const std::string& name, const std::string& type) {
  if (name.size() < type.size() + 2) return false;
  const std::size_t dot = name.size() - type.size() - 1;
  return name[dot] == '.' && ::strncasecmp(name.c_str() + dot + 1, type.c_str(), type.size()) == 0;
}

std::string stem(const std::string& name, const std::string& type) {
  return name.substr(0, name.size() - type.size() - 1);
}

bool isBlank(const std::string& name) {
  return name.find_first_not_of(" \t") == std::string::npos;
}

}  // namespace

std::optional<std::string> SaveName::typeOf(const std::string& name) const {
  for (const std::string& type : types_) {
    if (hasType(name, type)) return type;
  }
  return std::nullopt;
}

std::string SaveName::finished(const std::string& name) const {
  if (isBlank(name) || types_.empty()) return name;
  if (const auto type = typeOf(name)) return stem(name, *type) + "." + *type;
  if (otherTypes_ == OtherTypes::Allowed && !pathExtension(name).empty()) return name;
  return name + "." + types_.front();
}

std::string SaveName::withoutType(const std::string& name) const {
  const auto type = typeOf(name);
  return type ? stem(name, *type) : name;
}

std::string SaveName::ofExistingItem(const std::string& name) const {
  if (types_.empty() || typeOf(name)) return name;
  if (otherTypes_ == OtherTypes::Allowed) return name;
  return deletingPathExtension(name) + "." + types_.front();
}

std::optional<SaveName::Problem> SaveName::problem(const std::string& name) {
  if (isBlank(name)) return Problem::Empty;
  if (name.find_first_of(std::string("/\0", 2)) != std::string::npos) return Problem::Separator;
  if (name == "." || name == "..") return Problem::Reserved;
  if (name.size() > NAME_MAX) return Problem::TooLong;
  return std::nullopt;
}

}  // namespace tavrin
