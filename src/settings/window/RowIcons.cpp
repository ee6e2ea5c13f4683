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

std::shared_ptr<const PropertyList::Data> bytesOf(const RowIcon& icon) {
  const auto* bytes = std::get_if<row_icon::Bytes>(&icon);
  return bytes == nullptr ? nullptr : bytes->data;
}

/// Equal for equal pictures, and for bytes at the same address.
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

}  // namespace

RowIcons::RowIcons(Platform& platform) : platform_(platform), cache_(keptPictures) {}

QPixmap RowIcons::pixmap(const RowIcon& icon, int side, qreal pixelRatio) {
  QByteArray key = keyOf(icon);
  if (key.isEmpty()) return {};
  const int pixels = qRound(side * pixelRatio);
  key += "@" + QByteArray::number(pixels);
  const Kept* kept = cache_.object(key);
  if (kept != nullptr && kept->bytes.lock() == bytesOf(icon)) return kept->pixmap;
  QPixmap pixmap = made(icon, pixels);
  pixmap.setDevicePixelRatio(pixelRatio);
  cache_.insert(key, new Kept{pixmap, bytesOf(icon)});
  return pixmap;
}

QPixmap RowIcons::made(const RowIcon& icon, int pixels) {
  if (const auto* file = std::get_if<row_icon::ImageFile>(&icon)) {
    const auto image = platform_.images.imageWithContentsOfFile(file->path);
    if (image) return fromImage(image.value().get(), pixels);
    // Most extensions have no image of their own.
    if (image.error().code != std::errc::no_such_file_or_directory) {
      tellFailure(image.error());
    }
    return fromDesktop(file->standIn, pixels);
  }
  if (const auto* item = std::get_if<row_icon::Item>(&icon)) {
    return fromDesktop(item->path, pixels);
  }
  if (const auto* resource = std::get_if<row_icon::Resource>(&icon)) {
    const auto image = platform_.images.imageWithContentsOfFile(resource->path);
    if (image) return fromImage(image.value().get(), pixels);
    tellFailure(image.error());
    return {};
  }
  const auto* bytes = std::get_if<row_icon::Bytes>(&icon);
  return fromImage(platform_.images.imageWithData(*bytes->data).get(), pixels);
}

QPixmap RowIcons::fromImage(const Image* image, int pixels) {
  if (image == nullptr) return {};
  const auto png = image->squarePng(pixels);
  if (png) return decodedPng(png.value());
  tellFailure(png.error());
  return {};
}

void RowIcons::tellFailure(const SystemError& error) {
  if (!hasToldFailure_) platform_.log.write("a picture cannot be shown: " + error.describe());
  hasToldFailure_ = true;
}

QPixmap RowIcons::fromDesktop(const std::string& path, int pixels) const {
  const auto png = platform_.workspace.iconForFile(path, pixels);
  return png ? decodedPng(*png) : QPixmap();
}

}  // namespace tavrin
