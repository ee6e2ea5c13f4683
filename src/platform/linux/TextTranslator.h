#pragma once

#include <QTranslator>

namespace tavrin {

/// Gives Qt's texts by their English wording from the table of the product. Texts that name a count
/// are asked of the table itself, which takes both of their English forms.
class TextTranslator final : public QTranslator {
 public:
  using QTranslator::QTranslator;

  QString translate(const char* context, const char* sourceText, const char* disambiguation,
                    int count) const override;
  bool isEmpty() const override { return false; }
};

/// Lets windows speak the user's language and be laid out in the direction it is read in. Qt's own
/// texts follow where Qt's translations are installed. Call with the application made, before the
/// first window; windows in English cost no translator.
void translateWindows();

}  // namespace tavrin
