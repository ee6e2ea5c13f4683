#include "extensions/dolphin/DolphinItems.h"

#include <QMimeType>

namespace tavrin {

const KFileItem& DolphinItems::item(std::size_t index) const {
  return items_.at(static_cast<int>(index));
}

std::string DolphinItems::uri(std::size_t index) const {
  const QUrl url = item(index).url();
  // Other lists (the desktop, recent files, search results) name files that stand somewhere else;
  // those in the trash are not to be worked on where they lie.
  const bool isInTrash = url.scheme() == QLatin1String("trash");
  return (isInTrash ? url : item(index).mostLocalUrl()).toEncoded().toStdString();
}

std::string DolphinItems::contentType(std::size_t index) const {
  return item(index).currentMimeType().name().toStdString();
}

}  // namespace tavrin
