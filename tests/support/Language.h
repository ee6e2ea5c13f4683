#pragma once

namespace tavrin::testing {

/// Lets the process speak a language, with the product's own tables, for the life of the object.
class Language {
 public:
  /// `locale` is one that the tests have: "de_DE.UTF-8", "ru_RU.UTF-8", "ar_EG.UTF-8", or "C".
  /// Texts are in another language than its own where `textLanguage` names one, such as "pt_BR".
  explicit Language(const char* locale, const char* textLanguage = nullptr);
  Language(const Language&) = delete;
  Language& operator=(const Language&) = delete;
  ~Language();
};

}  // namespace tavrin::testing
