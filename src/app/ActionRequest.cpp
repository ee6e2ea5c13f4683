#include "app/ActionRequest.h"

#include <array>
#include <utility>

namespace tavrin {

namespace {

constexpr std::array<const char*, 8> stringKeys = {
    request_key::action,          request_key::path,         request_key::selectedFilesUrl,
    request_key::toPath,          request_key::selectedFile, request_key::file,
    request_key::cuttingFilesURL, request_key::pasteInPath};

SystemError wrongKind(const std::string& operation, const std::string& key) {
  return {operation, key, std::make_error_code(std::errc::invalid_argument)};
}

}  // namespace

ActionRequest::ActionRequest(PropertyList content) : content_(std::move(content)) {}

Result<ActionRequest> ActionRequest::requestWithPropertyList(PropertyList content) {
  if (!content.isDictionary()) return wrongKind("expect a dictionary at", "the root");
  for (const char* key : stringKeys) {
    const PropertyList* value = content.find(key);
    if (value != nullptr && !value->isString()) return wrongKind("expect a string for", key);
  }
  const PropertyList* tag = content.find(request_key::tag);
  if (tag != nullptr && !tag->isNumber() && !tag->isString()) {
    return wrongKind("expect a number or a string for", request_key::tag);
  }
  return ActionRequest(std::move(content));
}

std::optional<std::string> ActionRequest::stringForKey(const char* key) const {
  const PropertyList* value = content_.find(key);
  if (value == nullptr) return std::nullopt;
  return *value->stringIfString();
}

std::int64_t ActionRequest::tag() const {
  const PropertyList* value = content_.find(request_key::tag);
  return value == nullptr ? 0 : value->integerValue();
}

}  // namespace tavrin
