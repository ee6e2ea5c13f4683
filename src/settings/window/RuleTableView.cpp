#include "settings/window/RuleTableView.h"

#include <QContextMenuEvent>
#include <QDrag>
#include <QDragEnterEvent>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <algorithm>

#include "settings/window/PaintedButton.h"
#include "settings/window/RuleCellDelegate.h"
#include "settings/window/RuleTableModel.h"

namespace tavrin {

namespace {

constexpr int heightOfRow = 30;
constexpr int iconColumnWidth = 44;
constexpr int leastSwitchWidth = 64;
constexpr int optionColumnWidth = 200;
constexpr int textColumnWidth = 110;
constexpr int hintMargin = 40;
constexpr int gapLineWidth = 2;

/// Names the dragged row. It is of no use to any other program.
constexpr const char* rowType = "application/x-tavrin-rule-row";

}  // namespace

RuleTableView::RuleTableView(QWidget* parent) : QTableView(parent) {
  setItemDelegate(new RuleCellDelegate(this));
  setSelectionBehavior(SelectRows);
  setSelectionMode(SingleSelection);
  setEditTriggers(DoubleClicked | EditKeyPressed);
  setTabKeyNavigation(false);
  setShowGrid(false);
  setAlternatingRowColors(true);
  setWordWrap(false);
  setVerticalScrollMode(ScrollPerPixel);
  setHorizontalScrollMode(ScrollPerPixel);
  setDragDropMode(DragDrop);
  setDragDropOverwriteMode(false);
  setDropIndicatorShown(false);
  verticalHeader()->hide();
  verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
  verticalHeader()->setMinimumSectionSize(heightOfRow);
  verticalHeader()->setDefaultSectionSize(heightOfRow);
  horizontalHeader()->setHighlightSections(false);
  horizontalHeader()->setSectionsClickable(false);
}

void RuleTableView::setRuleModel(RuleTableModel& model) {
  ruleModel_ = &model;
  setModel(&model);
  layOutColumns();
}

void RuleTableView::layOutColumns() {
  QHeaderView* header = horizontalHeader();
  header->setMinimumSectionSize(iconColumnWidth);
  const auto columns = columnsOfRuleList(ruleModel_->list());
  for (int section = 0; section < ruleModel_->columnCount(); ++section) {
    switch (columns[static_cast<std::size_t>(section)].kind) {
      case RuleColumn::Kind::Icon:
        header->setSectionResizeMode(section, QHeaderView::Fixed);
        header->resizeSection(section, iconColumnWidth);
        break;
      case RuleColumn::Kind::Switch:
        header->setSectionResizeMode(section, QHeaderView::Fixed);
        header->resizeSection(section,
                              std::max(leastSwitchWidth, header->sectionSizeHint(section)));
        break;
      case RuleColumn::Kind::Option:
        header->setSectionResizeMode(section, QHeaderView::Fixed);
        header->resizeSection(section, optionColumnWidth);
        break;
      case RuleColumn::Kind::Text:
        header->resizeSection(section, textColumnWidth);
        break;
    }
  }
  header->setSectionResizeMode(ruleModel_->titleColumn(), QHeaderView::Stretch);
  const int path = ruleModel_->columnWithIdentifier(column_identifier::realPath);
  if (path >= 0) header->setSectionResizeMode(path, QHeaderView::Stretch);
}

int RuleTableView::selectedRow() const {
  const QModelIndexList rows = selectionModel()->selectedRows();
  return rows.isEmpty() ? -1 : rows.first().row();
}

void RuleTableView::selectRow(int row) {
  if (row < 0 || row >= model()->rowCount()) {
    clearSelection();
    setCurrentIndex({});
    return;
  }
  setCurrentIndex(model()->index(row, ruleModel_->titleColumn()));
  QTableView::selectRow(row);
}

void RuleTableView::editTitle() {
  const QModelIndex title = model()->index(selectedRow(), ruleModel_->titleColumn());
  if (!(model()->flags(title) & Qt::ItemIsEditable)) return;
  setCurrentIndex(title);
  edit(title);
}

void RuleTableView::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_F2:
      return editTitle();
    case Qt::Key_Delete:
      // Held down, the key would empty the list.
      if (!event->isAutoRepeat() && event->modifiers() == Qt::NoModifier) Q_EMIT removeRequested();
      return;
    case Qt::Key_Up:
    case Qt::Key_Down:
      if (event->modifiers() == Qt::AltModifier) return moveSelectedRow(event->key());
      break;
    case Qt::Key_Space:
      if (toggleRow()) return;
      break;
    default:
      break;
  }
  QTableView::keyPressEvent(event);
}

void RuleTableView::focusInEvent(QFocusEvent* event) {
  QTableView::focusInEvent(event);
  // The keys for a row work at once.
  if (isKeyboardFocus(*event) && selectedRow() < 0) selectRow(std::max(currentIndex().row(), 0));
}

void RuleTableView::moveSelectedRow(int key) {
  const int row = selectedRow();
  const int target = key == Qt::Key_Up ? row - 1 : row + 1;
  if (row >= 0 && target >= 0 && target < model()->rowCount()) Q_EMIT moveRequested(row, target);
}

/// Space switches the row whatever its current cell is, except where that has a switch of its own.
bool RuleTableView::toggleRow() {
  const QModelIndex current = currentIndex();
  if (!current.isValid() || current.data(Qt::CheckStateRole).isValid()) return false;
  for (int section = 0; section < model()->columnCount(); ++section) {
    const QModelIndex cell = current.siblingAtColumn(section);
    if (!(cell.flags() & Qt::ItemIsUserCheckable)) continue;
    const bool isOn = cell.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    model()->setData(cell, isOn ? Qt::Unchecked : Qt::Checked, Qt::CheckStateRole);
    return true;
  }
  return false;
}

void RuleTableView::contextMenuEvent(QContextMenuEvent* event) {
  const bool isByKey = event->reason() == QContextMenuEvent::Keyboard;
  // The position is the viewport's, or the table's when it comes from the header.
  const QPoint place = viewport()->mapFromGlobal(event->globalPos());
  if (!isByKey && !viewport()->rect().contains(place)) return;
  const int row = isByKey ? selectedRow() : rowAt(place.y());
  if (row < 0) return;
  const QPoint below = visualRect(model()->index(row, ruleModel_->titleColumn())).bottomLeft();
  Q_EMIT rowMenuRequested(row, isByKey ? viewport()->mapToGlobal(below) : event->globalPos());
}

void RuleTableView::startDrag(Qt::DropActions /*actions*/) {
  const int row = selectedRow();
  if (row < 0) return;
  auto* dragged = new QMimeData;
  dragged->setData(QString::fromUtf8(rowType), QByteArray::number(row));
  auto* drag = new QDrag(this);
  drag->setMimeData(dragged);
  const QRect first = visualRect(model()->index(row, 0));
  const QRect rowRect(0, first.top(), viewport()->width(), first.height());
  drag->setPixmap(viewport()->grab(rowRect));
  drag->setHotSpot(viewport()->mapFromGlobal(QCursor::pos()) - rowRect.topLeft());
  // A row moves within its table and is at most a link to other programs.
  drag->exec(Qt::MoveAction | Qt::LinkAction, Qt::MoveAction);
}

bool RuleTableView::isOwnDrag(const QDropEvent& event) const {
  return event.source() == this && event.mimeData()->hasFormat(QString::fromUtf8(rowType));
}

int RuleTableView::gapAt(const QPoint& position) const {
  const int row = rowAt(position.y());
  if (row < 0) return model()->rowCount();
  const QRect rect = visualRect(model()->index(row, 0));
  return position.y() < rect.center().y() ? row : row + 1;
}

void RuleTableView::showGap(int gap) {
  gap_ = gap;
  viewport()->update();
}

void RuleTableView::dragEnterEvent(QDragEnterEvent* event) {
  if (!isOwnDrag(*event)) return event->ignore();
  setState(DraggingState);
  event->acceptProposedAction();
}

void RuleTableView::dragMoveEvent(QDragMoveEvent* event) {
  QTableView::dragMoveEvent(event);
  if (!isOwnDrag(*event)) return event->ignore();
  showGap(gapAt(event->position().toPoint()));
  event->acceptProposedAction();
}

void RuleTableView::dragLeaveEvent(QDragLeaveEvent* event) {
  QTableView::dragLeaveEvent(event);
  showGap(-1);
}

void RuleTableView::dropEvent(QDropEvent* event) {
  showGap(-1);
  setState(NoState);
  if (!isOwnDrag(*event)) return event->ignore();
  const int row = event->mimeData()->data(QString::fromUtf8(rowType)).toInt();
  event->acceptProposedAction();
  Q_EMIT rowDropped(row, gapAt(event->position().toPoint()));
}

void RuleTableView::paintEvent(QPaintEvent* event) {
  QTableView::paintEvent(event);
  QPainter painter(viewport());
  if (model()->rowCount() == 0) {
    painter.setPen(palette().color(QPalette::PlaceholderText));
    painter.drawText(viewport()->rect().adjusted(hintMargin, 0, -hintMargin, 0),
                     Qt::AlignCenter | Qt::TextWordWrap, emptyText_);
    return;
  }
  if (gap_ < 0) return;
  const int y = rowViewportPosition(std::min(gap_, model()->rowCount() - 1)) +
                (gap_ == model()->rowCount() ? heightOfRow : 0);
  painter.setPen(QPen(palette().color(QPalette::Highlight), gapLineWidth));
  painter.drawLine(0, y, viewport()->width(), y);
}

void RuleTableView::selectionChanged(const QItemSelection& selected,
                                     const QItemSelection& deselected) {
  QTableView::selectionChanged(selected, deselected);
  Q_EMIT selectedRowChanged();
}

}  // namespace tavrin
