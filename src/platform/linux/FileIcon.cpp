#include "platform/linux/FileIcon.h"

#include <sys/stat.h>

#include <QBuffer>
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

QPixmap pixmapOf(const std::string& path, int side) {
  const bool folder = isFolder(path);
  const QIcon icon = folder ? iconOfFolder(path)
                            : PanelIcons::themeIconOfName(displayName(lastPathComponent(path)));
  // Without the display's scale: the side is in pixels.
  QPixmap pixmap = icon.pixmap(QSize(side, side), 1.0);
  if (!pixmap.isNull()) return pixmap;
  return PanelIcons::drawing(folder ? PanelIcons::Symbol::Folder : PanelIcons::Symbol::Document,
                             side);
}

}  // namespace

Result<PropertyList::Data> pngOfFileIcon(const std::string& path, int sidePixels) {
  const int side = std::clamp(sidePixels, 1, largestSide);
  QByteArray bytes;
  QBuffer buffer(&bytes);
  buffer.open(QIODevice::WriteOnly);
  const QImage icon = pixmapOf(path, side)
                          .toImage()
                          .scaled(side, side, Qt::KeepAspectRatio, Qt::SmoothTransformation);
  if (!centredOnSquare(icon, side).save(&buffer, "png")) {
    return SystemError{"draw the icon of", path, std::make_error_code(std::errc::io_error)};
  }
  return PropertyList::Data(bytes.begin(), bytes.end());
}

}  // namespace tavrin
