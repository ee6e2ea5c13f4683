#pragma once

#include <QCache>
#include <QPixmap>
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

  /// Forgets the pictures that may have changed outside of the lists: templates and folders.
  void forget() { cache_.clear(); }

 private:
  QPixmap made(const RowIcon& icon, int pixels) const;
  QPixmap fromImage(const Image* image, int pixels) const;
  QPixmap fromDesktop(const std::string& path, int pixels) const;

  Platform& platform_;
  QCache<QByteArray, QPixmap> cache_;
};

}  // namespace tavrin
