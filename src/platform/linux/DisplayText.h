#pragma once

#include <QString>
#include <string>

namespace tavrin {

/// Text for a widget from text that the program holds as UTF-8.
inline QString displayText(const std::string& text) {
  return QString::fromStdString(text);
}

/// A file name as a widget shows it: on one line, control characters as their Unicode pictures,
/// bytes that are no UTF-8 as replacement characters.
QString displayName(const std::string& name);

}  // namespace tavrin
