#include "platform/linux/panel/PanelRules.h"

#include <strings.h>

#include <algorithm>

#include "foundation/PathString.h"

namespace tavrin {

namespace {

bool hasTypeOf(const FileURL& url, const std::vector<std::string>& types) {
  const std::string extension = pathExtension(url.path());
  return std::any_of(types.begin(), types.end(), [&extension](const std::string& type) {
    return ::strcasecmp(extension.c_str(), type.c_str()) == 0;
  });
}

}  // namespace

bool PanelRules::isEnabled(const FileURL& url, bool isFolder) const {
  if (!isFolder && !canChooseFiles) return false;
  if (!isFolder && !allowedFileTypes.empty() && !hasTypeOf(url, allowedFileTypes)) return false;
  return delegate == nullptr || delegate->panelShouldEnableURL(url);
}

bool PanelRules::isPickable(const FileURL& url, bool isFolder) const {
  return (isFolder ? canChooseDirectories : canChooseFiles) && isEnabled(url, isFolder);
}

}  // namespace tavrin
