#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "foundation/PropertyList.h"

/// How the rows of the rule lists are called, in the window as in the menu.
namespace tavrin {

/// Looks an English text up in the user's language.
using Localization = std::function<std::string(const std::string& key)>;

/// The title of a template, an icon or a command: localised, unless the field `modifiedField` of
/// the record says that it is the user's own.
std::string titleOfRow(const PropertyList& record, const char* modifiedField,
                       const Localization& localized);

/// The title that the user gave a folder's row, or else the folder's name (displayNameOfFolder).
std::string titleOfFolderRow(const PropertyList& record, std::string_view homePath,
                             const Localization& localized);

}  // namespace tavrin
