#include "platform/linux/TextTable.h"

#include <libintl.h>

#include <string_view>

#include "foundation/PathString.h"
#include "platform/linux/Identity.h"
#include "platform/linux/LinuxDirectories.h"

namespace tavrin {

void bindTextTable(const std::string& localeFolder) {
  ::bindtextdomain(identity::textDomain, localeFolder.c_str());
  ::bind_textdomain_codeset(identity::textDomain, "UTF-8");
}

void bindInstalledTextTable() {
  bindTextTable(
      standardizingPath(appendingPathComponent(programDirectory(), identity::localeFolder)));
}

std::string translatedText(const std::string& key) {
  // The empty key stands for the information about the table itself.
  if (key.empty()) return key;
  return ::dgettext(identity::textDomain, key.c_str());
}

std::string translatedCount(const std::string& one, const std::string& many, unsigned long count) {
  return ::dngettext(identity::textDomain, one.c_str(), many.c_str(), count);
}

std::string textLanguage() {
  static constexpr std::string_view field = "Language: ";
  const std::string_view information = ::dgettext(identity::textDomain, "");
  const auto start = information.find(field);
  if (start == std::string_view::npos) return {};
  const std::string_view value = information.substr(start + field.size());
  return std::string(value.substr(0, value.find('\n')));
}

}  // namespace tavrin
