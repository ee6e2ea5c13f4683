#include "platform/linux/DisplayText.h"

namespace tavrin {

QString displayName(const std::string& name) {
  QString text = QString::fromStdString(name);
  for (QChar& character : text) {
    const char16_t unit = character.unicode();
    if (unit < 0x20) character = QChar(u'\x2400' + unit);
    if (unit == 0x7f) character = QChar(u'\x2421');
    if (unit == 0x2028 || unit == 0x2029) character = QChar(u'\x2424');
  }
  return text;
}

}  // namespace tavrin
