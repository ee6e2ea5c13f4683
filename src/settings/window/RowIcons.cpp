#include "settings/window/RowIcons.h"

#include <memory>
#include <utility>

namespace tavrin {

namespace {

constexpr int keptPictures = 256;

QPixmap decodedPng(const PropertyList::Data& png) {
  QPixmap pixmap;
  pixmap.loadFromData(png.data(), static_cast<unsigned>(png.size()), "png");
  return pixmap;
}

QByteArray named(char kind, const std::string& name) {
  return QByteArray(1, kind) + QByteArray::fromStdString(name);
}

/// Equal for equal pictures. Data that somebody holds keeps its place, so its address tells it.
QByteArray keyOf(const RowIcon& icon) {
  if (const auto* file = std::get_if<row_icon::ImageFile>(&icon)) {
    return named('f', file->path + '\0' + file->standIn);
  }
  if (const auto* item = std::get_if<row_icon::Item>(&icon)) return named('i', item->path);
  if (const auto* resource = std::get_if<row_icon::Resource>(&icon)) {
    return named('r', resource->path);
  }
  const auto* bytes = std::get_if<row_icon::Bytes>(&icon);
  if (bytes == nullptr || !bytes->data) return {};
  return "b" + QByteArray::number(reinterpret_cast<quintptr>(bytes->data.get())) + ":" +
         QByteArray::number(static_cast<qulonglong>(bytes->data->size()));
}

void tellFailure(Log& log, const SystemError& error) {
  log.write("a picture cannot be shown: " + error.describe());
}

}  // namespace

RowIcons::RowIcons(Platform& platform) : platform_(platform), cache_(keptPictures) {}

QPixmap RowIcons::pixmap(const RowIcon& icon, int side, qreal pixelRatio) {
  QByteArray key = keyOf(icon);
  if (key.isEmpty()) return {};
  const int pixels = qRound(side * pixelRatio);
  key += "@" + QByteArray::number(pixels);
  if (const QPixmap* kept = cache_.object(key)) return *kept;
  QPixmap pixmap = made(icon, pixels);
  pixmap.setDevicePixelRatio(pixelRatio);
  cache_.insert(key, new QPixmap(pixmap));
  return pixmap;
}

QPixmap RowIcons::made(const RowIcon& icon, int pixels) const {
  if (const auto* file = std::get_if<row_icon::ImageFile>(&icon)) {
    const auto image = platform_.images.imageWithContentsOfFile(file->path);
    if (image) return fromImage(image.value().get(), pixels);
    // Most extensions have no image of their own.
    if (image.error().code != std::errc::no_such_file_or_directory) {
      tellFailure(platform_.log, image.error());
    }
    return fromDesktop(file->standIn, pixels);
  }
  if (const auto* item = std::get_if<row_icon::Item>(&icon)) {
    return fromDesktop(item->path, pixels);
  }
  if (const auto* resource = std::get_if<row_icon::Resource>(&icon)) {
    const auto image = platform_.images.imageWithContentsOfFile(resource->path);
    if (image) return fromImage(image.value().get(), pixels);
    tellFailure(platform_.log, image.error());
    return {};
  }
  const auto* bytes = std::get_if<row_icon::Bytes>(&icon);
  return fromImage(platform_.images.imageWithData(*bytes->data).get(), pixels);
}

QPixmap RowIcons::fromImage(const Image* image, int pixels) const {
  if (image == nullptr) return {};
  const auto png = image->squarePng(pixels);
  if (png) return decodedPng(png.value());
  tellFailure(platform_.log, png.error());
  return {};
}

QPixmap RowIcons::fromDesktop(const std::string& path, int pixels) const {
  const auto png = platform_.workspace.iconForFile(path, pixels);
  return png ? decodedPng(*png) : QPixmap();
}

}  // namespace tavrin
