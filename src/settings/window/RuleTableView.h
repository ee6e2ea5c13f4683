#pragma once

#include <QTableView>

namespace tavrin {

class RuleTableModel;

/// The table of a rule list: rows of one height that the user retitles, switches, removes and moves
/// by mouse or keyboard. The same for all five lists.
class RuleTableView final : public QTableView {
  Q_OBJECT
  /// What stands in the table when it has no rows.
  Q_PROPERTY(QString emptyText READ emptyText WRITE setEmptyText)

 public:
  explicit RuleTableView(QWidget* parent = nullptr);

  QString emptyText() const { return emptyText_; }
  void setEmptyText(const QString& text) { emptyText_ = text; }

  /// Shows a list; `model` outlives this view.
  void setRuleModel(RuleTableModel& model);

  /// The selected row; -1 when there is none.
  int selectedRow() const;
  /// Selects a row and scrolls to it; -1 clears the selection.
  void selectRow(int row);

  /// Begins to edit the title of the selected row.
  void editTitle();

 Q_SIGNALS:
  void selectedRowChanged();
  /// The user asks for the selected row to be removed.
  void removeRequested();
  /// The user moves the selected row to another place in the list.
  void moveRequested(int fromRow, int toRow);
  /// The user has dropped a row into the gap above `dropRow`; the row count is below the last one.
  void rowDropped(int sourceRow, int dropRow);
  /// The user asks for what can be done with the row, at a place on the screen.
  void rowMenuRequested(int row, const QPoint& globalPosition);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;
  void startDrag(Qt::DropActions actions) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dragMoveEvent(QDragMoveEvent* event) override;
  void dragLeaveEvent(QDragLeaveEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void selectionChanged(const QItemSelection& selected, const QItemSelection& deselected) override;

 private:
  void layOutColumns();
  void moveSelectedRow(int key);
  bool toggleRow();
  bool isOwnDrag(const QDropEvent& event) const;
  int gapAt(const QPoint& position) const;
  void showGap(int gap);

  RuleTableModel* ruleModel_ = nullptr;
  QString emptyText_;
  /// The gap that a dragged row would fall into; -1 without one.
  int gap_ = -1;
};

}  // namespace tavrin
