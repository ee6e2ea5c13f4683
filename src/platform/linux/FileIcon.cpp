#include "platform/linux/FileIcon.h"

#include <sys/stat.h>

#include <QBuffer>
#include <QFile>
#include <algorithm>

#include "foundation/PathString.h"
#include "platform/linux/DisplayText.h"
#include "platform/linux/SquarePicture.h"
#include "platform/linux/panel/PanelIcons.h"
#include "platform/linux/panel/PanelPlaces.h"

namespace tavrin {

namespace {

constexpr int largestSide = 1024;

bool isFolder(const std::string& path) {
  struct stat status = {};
  if (::stat(path.c_str(), &status) == 0) return S_ISDIR(status.st_mode);
  return path.ends_with('/') || pathExtension(path).empty();
}

QIcon iconOfFolder(const std::string& path) {
  const QString place = QString::fromLatin1(themeIconOfFolder(standardizingPath(path)));
  if (QIcon::hasThemeIcon(place)) return QIcon::fromTheme(place);
  return QIcon::fromTheme(QStringLiteral("folder"));
}

/// The drawing stands in for an icon that has no picture.
Result<PropertyList::Data> pngOf(const QIcon& icon, PanelIcons::Symbol drawing, int sidePixels,
                                 const std::string& name) {
  const int side = std::clamp(sidePixels, 1, largestSide);
  // Without the display's scale: the side is in pixels.
  QPixmap pixmap = icon.pixmap(QSize(side, side), 1.0);
  if (pixmap.isNull()) pixmap = PanelIcons::drawing(drawing, side);
  const QImage picture =
      pixmap.toImage().scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  if (!centredOnSquare(picture, side).save(&buffer, "png")) {
    return SystemError{"draw the icon of", name, std::make_error_code(std::errc::io_error)};
  }
  return PropertyList::Data(bytes.begin(), bytes.end());
}

QIcon iconOfName(const std::string& nameOrPath) {
  if (nameOrPath.starts_with('/')) {
    QIcon image(QFile::decodeName(nameOrPath.c_str()));
    if (!image.pixmap(1).isNull()) return image;
  }
  const QString name = QString::fromStdString(nameOrPath);
  return QIcon::hasThemeIcon(name) ? QIcon::fromTheme(name)
                                   : QIcon::fromTheme(QStringLiteral("system-file-manager"));
}

}  // namespace

Result<PropertyList::Data> pngOfFileIcon(const std::string& path, int sidePixels) {
  if (isFolder(path)) {
    return pngOf(iconOfFolder(path), PanelIcons::Symbol::Folder, sidePixels, path);
  }
  const QIcon icon = PanelIcons::themeIconOfName(displayName(lastPathComponent(path)));
  return pngOf(icon, PanelIcons::Symbol::Document, sidePixels, path);
}

Result<PropertyList::Data> pngOfNamedIcon(const std::string& nameOrPath, int sidePixels) {
  return pngOf(iconOfName(nameOrPath), PanelIcons::Symbol::Folder, sidePixels, nameOrPath);
}

}  // namespace tavrin
