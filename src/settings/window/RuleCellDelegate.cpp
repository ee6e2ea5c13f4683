#include "settings/window/RuleCellDelegate.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QStyle>
#include <algorithm>
#include <limits>

#include "settings/window/RuleTableModel.h"
#include "settings/window/WindowPalette.h"

namespace tavrin {

namespace {

const QStyle& styleOf(const QStyleOptionViewItem& option) {
  return option.widget == nullptr ? *QApplication::style() : *option.widget->style();
}

QRect centred(const QSize& size, const QRect& cell) {
  return QStyle::alignedRect(Qt::LeftToRight, Qt::AlignCenter, size, cell);
}

QRect switchRect(const QStyleOptionViewItem& option) {
  const QStyle& style = styleOf(option);
  return centred({style.pixelMetric(QStyle::PM_IndicatorWidth, &option, option.widget),
                  style.pixelMetric(QStyle::PM_IndicatorHeight, &option, option.widget)},
                 option.rect);
}

void paintSwitch(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) {
  QStyleOptionButton button;
  button.rect = switchRect(option);
  button.palette = switchPalette(option.palette);
  button.direction = option.direction;
  const bool isLocked = index.data(RuleTableModel::IsLockedRole).toBool();
  const bool isOn = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
  button.state = (isOn ? QStyle::State_On : QStyle::State_Off) |
                 (isLocked ? QStyle::State_None : option.state & QStyle::State_Enabled) |
                 (option.state & QStyle::State_Active);
  if (isLocked) button.palette.setCurrentColorGroup(QPalette::Disabled);
  styleOf(option).drawPrimitive(QStyle::PE_IndicatorCheckBox, &button, &painter, option.widget);
}

void paintPicture(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) {
  const auto pixmap = index.data(Qt::DecorationRole).value<QPixmap>();
  if (pixmap.isNull()) return;
  const QRect room = centred(pixmap.deviceIndependentSize().toSize(), option.rect);
  painter.drawPixmap(room, pixmap);
}

bool isClick(const QEvent& event) {
  return event.type() == QEvent::MouseButtonRelease || event.type() == QEvent::MouseButtonDblClick;
}

bool isMouseEvent(const QEvent& event) {
  return event.type() == QEvent::MouseButtonPress || isClick(event);
}

/// Whether an event is a click on the switch or a press of the key for it.
bool isToggle(const QEvent& event, const QStyleOptionViewItem& option) {
  if (isClick(event)) {
    const auto& mouse = static_cast<const QMouseEvent&>(event);
    return mouse.button() == Qt::LeftButton &&
           switchRect(option).adjusted(-4, -4, 4, 4).contains(mouse.position().toPoint());
  }
  if (event.type() != QEvent::KeyPress) return false;
  const int key = static_cast<const QKeyEvent&>(event).key();
  return key == Qt::Key_Space || key == Qt::Key_Select;
}

}  // namespace

void RuleCellDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                             const QModelIndex& index) const {
  const bool hasSwitch = index.data(Qt::CheckStateRole).isValid();
  const bool hasPicture = index.data(RuleTableModel::IconSideRole).toInt() > 0;
  if (!hasSwitch && !hasPicture) {
    QStyleOptionViewItem text = option;
    if (index.column() > 0 && index.data(Qt::DisplayRole).toString().contains(u'/')) {
      text.textElideMode = Qt::ElideMiddle;
    }
    return QStyledItemDelegate::paint(painter, text, index);
  }
  QStyleOptionViewItem background = option;
  initStyleOption(&background, index);
  background.features &= ~(QStyleOptionViewItem::HasCheckIndicator |
                           QStyleOptionViewItem::HasDecoration | QStyleOptionViewItem::HasDisplay);
  background.text.clear();
  background.icon = {};
  styleOf(option).drawControl(QStyle::CE_ItemViewItem, &background, painter, option.widget);
  if (hasSwitch) paintSwitch(*painter, option, index);
  if (hasPicture) paintPicture(*painter, option, index);
}

QWidget* RuleCellDelegate::createEditor(QWidget* parent, const QStyleOptionViewItem& option,
                                        const QModelIndex& index) const {
  QWidget* editor = QStyledItemDelegate::createEditor(parent, option, index);
  const QVariant title =
      index.model()->headerData(index.column(), Qt::Horizontal, Qt::AccessibleTextRole);
  if (editor != nullptr) editor->setAccessibleName(title.toString());
  // A longer title would be cut as soon as it is edited.
  if (auto* line = qobject_cast<QLineEdit*>(editor)) {
    line->setMaxLength(std::numeric_limits<int>::max());
  }
  return editor;
}

void RuleCellDelegate::setEditorData(QWidget* editor, const QModelIndex& index) const {
  // A list that another program stores meanwhile must not take away what is being typed.
  const auto* line = qobject_cast<QLineEdit*>(editor);
  if (line != nullptr && line->isModified()) return;
  QStyledItemDelegate::setEditorData(editor, index);
}

void RuleCellDelegate::updateEditorGeometry(QWidget* editor, const QStyleOptionViewItem& option,
                                            const QModelIndex& /*index*/) const {
  editor->setGeometry(option.rect.adjusted(1, 1, -1, -1));
}

bool RuleCellDelegate::editorEvent(QEvent* event, QAbstractItemModel* model,
                                   const QStyleOptionViewItem& option, const QModelIndex& index) {
  const QVariant state = index.data(Qt::CheckStateRole);
  if (!state.isValid()) return QStyledItemDelegate::editorEvent(event, model, option, index);
  if (!(index.flags() & Qt::ItemIsUserCheckable)) return false;
  // The release that ends a double click is the same click; not every Qt hands it on.
  const bool endsDoubleClick = event->type() == QEvent::MouseButtonRelease && isDoubleClick_;
  if (isMouseEvent(*event)) isDoubleClick_ = event->type() == QEvent::MouseButtonDblClick;
  if (endsDoubleClick || !isToggle(*event, option)) return endsDoubleClick;
  const bool isOn = state.toInt() == Qt::Checked;
  return model->setData(index, isOn ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
}

}  // namespace tavrin
