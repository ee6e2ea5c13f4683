#pragma once

#include <QCache>
#include <QPixmap>
#include <memory>
#include <string>

#include "platform/Platform.h"
#include "settings/RuleRows.h"

namespace tavrin {

/// The pictures of the rule tables' cells, decoded when they are first shown; those shown last are
/// kept. Used on the main thread.
class RowIcons {
 public:
  /// Outlives this object.
  explicit RowIcons(Platform& platform);

  /// The picture in a square of `side` points on a screen of the given pixel ratio; null when there
  /// is none.
  QPixmap pixmap(const RowIcon& icon, int side, qreal pixelRatio);

 private:
  struct Kept {
    QPixmap pixmap;
    /// The image's bytes; once they are gone, others may stand at their address.
    std::weak_ptr<const PropertyList::Data> bytes;
  };

  QPixmap made(const RowIcon& icon, int pixels);
  QPixmap fromImage(const Image* image, int pixels);
  QPixmap fromDesktop(const std::string& path, int pixels) const;

  /// The first one; a long list of broken images is not worth a line each.
  void tellFailure(const SystemError& error);

  Platform& platform_;
  QCache<QByteArray, Kept> cache_;
  bool hasToldFailure_ = false;
};

}  // namespace tavrin
