#include "app/ActionRequest.h"

#include <utility>

#include "foundation/FileURL.h"

namespace tavrin {

namespace {

SystemError wrongKind(const std::string& operation, const std::string& key) {
  return {operation, key, std::make_error_code(std::errc::invalid_argument)};
}

}  // namespace

ActionRequest::ActionRequest(PropertyList content) : content_(std::move(content)) {}

Result<ActionRequest> ActionRequest::requestWithPropertyList(PropertyList content) {
  if (!content.isDictionary()) return wrongKind("expect a dictionary at", "the root");
  for (const char* key : request_key::strings) {
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

std::vector<std::string_view> fileListItems(const std::optional<std::string>& selection) {
  return selection ? splitFileList(*selection) : std::vector<std::string_view>();
}

}  // namespace tavrin
