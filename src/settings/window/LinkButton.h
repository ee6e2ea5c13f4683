#pragma once

#include <QAbstractButton>

namespace tavrin {

/// A button that leads out of the program: a title with a line of description below it.
class LinkButton final : public QAbstractButton {
  Q_OBJECT
  Q_PROPERTY(QString description READ description WRITE setDescription)

 public:
  explicit LinkButton(QWidget* parent = nullptr);

  QString description() const { return description_; }
  void setDescription(const QString& description);

  QSize sizeHint() const override;
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;

 private:
  QFont titleFont() const;

  QString description_;
  bool showsFocus_ = false;
};

}  // namespace tavrin
