#pragma once

#include <QAbstractButton>
#include <QColor>
#include <QImage>

namespace tavrin {

/// An entry of the sidebar: a drawing and a text in one row. It is chosen like a radio button, by a
/// click or the arrow keys.
class SidebarButton final : public QAbstractButton {
  Q_OBJECT

 public:
  explicit SidebarButton(QWidget* parent = nullptr);

  /// A drawing whose opaque parts take the colour of the text.
  void setMask(QImage mask);
  void setLayerBackground(const QColor& colour);
  QColor layerBackground() const { return layerBackground_; }

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;

 private:
  QRect iconRect() const;

  QImage mask_;
  QColor layerBackground_ = Qt::transparent;
  /// The focus came by the keyboard, which has to see where it is.
  bool showsFocus_ = false;
};

/// True when the keyboard brought the focus.
bool isKeyboardFocus(const QFocusEvent& event);

/// The drawing in one colour, `side` points wide on a screen of the given pixel ratio.
QPixmap tintedPixmap(const QImage& mask, const QColor& colour, int side, qreal pixelRatio);

}  // namespace tavrin
