#include "settings/window/ApplicationIcon.h"

#include <QFile>
#include <QString>
#include <string>

namespace tavrin {

QIcon applicationIcon(const Bundle& bundle) {
  const QString name = QStringLiteral("app.tavrin.Tavrin");
  if (QIcon::hasThemeIcon(name)) return QIcon::fromTheme(name);
  QIcon icon;
  for (const char* size : {"16", "22", "24", "32", "48", "64", "128", "256"}) {
    const std::string path = bundle.resourcePath() + "/../icons/hicolor/" + size + "x" + size +
                             "/apps/app.tavrin.Tavrin.png";
    icon.addFile(QFile::decodeName(path.c_str()));
  }
  return icon;
}

}  // namespace tavrin
