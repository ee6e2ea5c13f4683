#include "settings/window/ChildWidgets.h"

#include <QCheckBox>
#include <QLabel>

#include "settings/window/WindowPalette.h"

namespace tavrin {

void alignLabels(QWidget& container) {
  if (!container.isRightToLeft()) return;
  for (QLabel* label : container.findChildren<QLabel*>()) {
    label->setAlignment(Qt::AlignRight | Qt::AlignAbsolute | Qt::AlignVCenter);
  }
}

void setSwitchPalettes(QWidget& container, const QPalette& controls) {
  for (QCheckBox* box : container.findChildren<QCheckBox*>()) {
    box->setPalette(switchPalette(controls));
  }
}

}  // namespace tavrin
