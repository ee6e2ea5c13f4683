#include "platform/linux/ApplicationIcon.h"

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QString>

#include "platform/linux/Identity.h"
#include "platform/linux/LinuxDirectories.h"

namespace tavrin {

namespace {

QIcon installedIcon() {
  const QString pattern = QFile::decodeName(programDirectory().c_str()) +
                          QStringLiteral("/%1/../icons/hicolor/%2x%2/apps/%3.png");
  QIcon icon;
  for (const char* size : {"16", "22", "24", "32", "48", "64", "128", "256"}) {
    icon.addFile(pattern.arg(QLatin1String(identity::resourceFolder), QLatin1String(size),
                             QLatin1String(identity::applicationId)));
  }
  return icon;
}

}  // namespace

void ensureApplicationIcon() {
  if (!QApplication::windowIcon().isNull()) return;
  const QString name = QString::fromUtf8(identity::applicationId);
  QApplication::setWindowIcon(QIcon::hasThemeIcon(name) ? QIcon::fromTheme(name) : installedIcon());
}

}  // namespace tavrin
