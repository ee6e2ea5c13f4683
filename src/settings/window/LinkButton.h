#pragma once

#include "settings/window/PaintedButton.h"

namespace tavrin {

/// A button that leads out of the program: a title with a line of description below it.
class LinkButton final : public PaintedButton {
  Q_OBJECT
  Q_PROPERTY(QString description READ description WRITE setDescription)

 public:
  explicit LinkButton(QWidget* parent = nullptr);

  QString description() const { return description_; }
  void setDescription(const QString& description);

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QFont titleFont() const;

  QString description_;
};

}  // namespace tavrin
