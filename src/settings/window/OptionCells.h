#pragma once

#include <QObject>
#include <map>
#include <string>

class QWidget;

namespace tavrin {

class RuleTableView;

/// The option controls of a table's rows. There is one control for each command, and it is shown in
/// the row of its command; those that no row shows wait on a shelf.
class OptionCells final : public QObject {
 public:
  /// `shelf`, which is hidden, and `table` outlive this object.
  OptionCells(QWidget& shelf, RuleTableView& table, QObject* parent);

  /// The control of a command. It outlives this object.
  void setControl(const std::string& action, QWidget& control);

  /// Moves the controls into the rows as they are now. To be called whenever these changed.
  void place();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void clear();
  void reveal(const QWidget& control);

  QWidget& shelf_;
  RuleTableView& table_;
  std::map<std::string, QWidget*> controls_;
};

}  // namespace tavrin
