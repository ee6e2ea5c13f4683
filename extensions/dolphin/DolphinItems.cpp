#include "extensions/dolphin/DolphinItems.h"

#include <QMimeType>

namespace tavrin {

const KFileItem& DolphinItems::item(std::size_t index) const {
  return items_.at(static_cast<int>(index));
}

std::string DolphinItems::uri(std::size_t index) const {
  // Other lists (the desktop, recent files, search results) name files that stand somewhere else;
  // those in the trash are not to be worked on where they lie.
  const bool isInTrash = item(index).url().scheme() == QLatin1String("trash");
  const QUrl url = isInTrash ? item(index).url() : item(index).mostLocalUrl();
  // What stands for bytes that are no UTF-8 would name another file.
  if (url.path().contains(QChar(QChar::ReplacementCharacter))) return {};
  return url.toEncoded().toStdString();
}

std::string DolphinItems::contentType(std::size_t index) const {
  return item(index).currentMimeType().name().toStdString();
}

}  // namespace tavrin
