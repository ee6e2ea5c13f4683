#include "settings/window/OptionCells.h"

#include <QEvent>
#include <QHBoxLayout>
#include <utility>
#include <vector>

#include "settings/window/RuleTableModel.h"
#include "settings/window/RuleTableView.h"

namespace tavrin {

OptionCells::OptionCells(QWidget& shelf, RuleTableView& table, QObject* parent)
    : QObject(parent), shelf_(shelf), table_(table) {}

void OptionCells::setControl(const std::string& action, QWidget& control) {
  controls_[action] = &control;
  control.setFocusPolicy(Qt::StrongFocus);
  control.installEventFilter(this);
}

bool OptionCells::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::FocusIn) reveal(*static_cast<QWidget*>(watched));
  // The wheel scrolls the table and does not choose on the way.
  if (event->type() != QEvent::Wheel) return QObject::eventFilter(watched, event);
  event->ignore();
  return true;
}

/// The Tab key reaches the controls of rows that are scrolled out of sight, too.
void OptionCells::reveal(const QWidget& control) {
  const QPoint place = control.mapTo(table_.viewport(), control.rect().center());
  const QModelIndex row = table_.model()->index(table_.rowAt(place.y()), 0);
  if (row.isValid()) table_.scrollTo(row);
}

void OptionCells::clear() {
  for (const auto& [action, control] : controls_) control->setParent(&shelf_);
}

void OptionCells::place() {
  clear();
  QAbstractItemModel& model = *table_.model();
  const auto& rules = static_cast<const RuleTableModel&>(model);
  const int column = rules.columnWithIdentifier(column_identifier::option);
  std::vector<QWidget*> placed;
  for (int row = 0; row < model.rowCount(); ++row) {
    const QModelIndex index = model.index(row, column);
    const auto found =
        controls_.find(index.data(RuleTableModel::OptionRole).toString().toStdString());
    if (found == controls_.end()) {
      if (table_.indexWidget(index) != nullptr) table_.setIndexWidget(index, nullptr);
      continue;
    }
    auto* cell = new QWidget;
    auto* layout = new QHBoxLayout(cell);
    layout->setContentsMargins(2, 1, 6, 1);
    const bool fills = found->second->inherits("QComboBox");
    layout->addWidget(found->second, fills ? 1 : 0);
    if (!fills) layout->addStretch();
    found->second->show();
    table_.setIndexWidget(index, cell);
    // Of several rows with the same command the last one gets the control.
    std::erase(placed, found->second);
    placed.push_back(found->second);
  }
  QWidget* previous = &table_;
  for (QWidget* control : placed) QWidget::setTabOrder(std::exchange(previous, control), control);
}

}  // namespace tavrin
