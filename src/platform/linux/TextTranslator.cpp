#include "platform/linux/TextTranslator.h"

#include <QGuiApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <clocale>

#include "platform/linux/TextTable.h"

namespace tavrin {

namespace {

void installTranslators(const QString& language) {
  auto* qtTexts = new QTranslator(QCoreApplication::instance());
  if (qtTexts->load(QLatin1String("qtbase_") + language,
                    QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
    QCoreApplication::installTranslator(qtTexts);
  }
  QCoreApplication::installTranslator(new TextTranslator(QCoreApplication::instance()));
}

/// Of the locale, whose direction other programs take too where they have no texts in it.
QString messageLanguage() {
  // NOLINTNEXTLINE(concurrency-mt-unsafe): asked before the threads that could set it
  return QString::fromUtf8(std::setlocale(LC_MESSAGES, nullptr));
}

}  // namespace

QString TextTranslator::translate(const char* /*context*/, const char* sourceText,
                                  const char* /*disambiguation*/, int /*count*/) const {
  const std::string text = translatedText(sourceText);
  // Nothing rather than the same text, so that Qt asks the other translators.
  return text == sourceText ? QString() : QString::fromStdString(text);
}

void translateWindows() {
  bindInstalledTextTable();
  const QString language = QString::fromStdString(textLanguage());
  if (!language.isEmpty()) installTranslators(language);
  QGuiApplication::setLayoutDirection(
      QLocale(language.isEmpty() ? messageLanguage() : language).textDirection());
}

}  // namespace tavrin
