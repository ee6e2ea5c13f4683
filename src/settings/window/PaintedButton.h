#pragma once

#include <QAbstractButton>

namespace tavrin {

/// True when the keyboard brought the focus.
bool isKeyboardFocus(const QFocusEvent& event);

/// A button that draws itself: as wide as its contents or more, lit under the mouse. It shows that
/// it has the focus where the keyboard brought it.
class PaintedButton : public QAbstractButton {
  Q_OBJECT

 public:
  explicit PaintedButton(QWidget* parent);

  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  bool showsFocus() const { return hasFocus() && isFocusShown_; }
  bool event(QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;

 private:
  bool isFocusShown_ = false;
};

}  // namespace tavrin
