#include "platform/linux/ApplicationIcon.h"

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QString>
#include <string>

#include "platform/linux/Identity.h"
#include "platform/linux/LinuxDirectories.h"

namespace tavrin {

namespace {

QIcon installedIcon() {
  const std::string theme =
      programDirectory() + "/" + identity::resourceFolder + "/../icons/hicolor/";
  const std::string file = std::string("/apps/") + identity::applicationId + ".png";
  QIcon icon;
  for (const char* size : {"16", "22", "24", "32", "48", "64", "128", "256"}) {
    icon.addFile(QFile::decodeName((theme + size + "x" + size + file).c_str()));
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
