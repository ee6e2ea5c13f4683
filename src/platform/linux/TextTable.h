#pragma once

#include <string>

namespace tavrin {

// The product's texts in the user's language, by the C library's own means (gettext): programs with
// and without a toolkit read the same tables. The language is that of the locale which the program
// has set for messages, or of $LANGUAGE before it.

/// Tells the C library where the tables are: below `localeFolder`, an absolute path, as
/// <language>/LC_MESSAGES/tavrin.mo. Once, before the first text is asked for.
void bindTextTable(const std::string& localeFolder);

/// The same for the tables that are installed with the running program.
void bindInstalledTextTable();

/// The text in the user's language, in UTF-8; `key`, the English wording, when there is none.
std::string translatedText(const std::string& key);

/// The text for a number of things, in the plural form that the user's language has for `count`.
/// Without a translation `one` for a count of 1 and `many` for all others. The number itself is not
/// put in.
std::string translatedCount(const std::string& one, const std::string& many, unsigned long count);

/// The language that the texts are in, such as "pt_BR"; "" when they are left in English.
std::string textLanguage();

}  // namespace tavrin
