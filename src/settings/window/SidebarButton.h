#pragma once

#include <QColor>
#include <QImage>

#include "settings/window/PaintedButton.h"

namespace tavrin {

/// An entry of the sidebar: a drawing and a text in one row. It is chosen like a radio button, by a
/// click or the arrow keys.
class SidebarButton final : public PaintedButton {
  Q_OBJECT

 public:
  explicit SidebarButton(QWidget* parent = nullptr);

  /// A drawing whose opaque parts take the colour of the text.
  void setMask(QImage mask);
  void setLayerBackground(const QColor& colour);
  QColor layerBackground() const { return layerBackground_; }

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QRect iconRect() const;

  QImage mask_;
  QColor layerBackground_ = Qt::transparent;
};

}  // namespace tavrin
