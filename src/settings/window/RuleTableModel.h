#pragma once

#include <QAbstractTableModel>
#include <cstddef>
#include <span>

#include "settings/RuleListEditing.h"
#include "settings/RuleRows.h"
#include "settings/window/RowIcons.h"

namespace tavrin {

/// A rule list as the model of its table: the same for all five lists.
class RuleTableModel final : public QAbstractTableModel {
  Q_OBJECT

 public:
  enum Role {
    /// The side of the picture in points.
    IconSideRole = Qt::UserRole,
    /// Whether a cell holds a switch that the user cannot change.
    IsLockedRole,
    /// The command whose option control the cell holds.
    OptionRole,
  };

  /// All outlive this object.
  RuleTableModel(RuleList list, Platform& platform, RuleListEditing& editing, const RuleRows& rows,
                 RowIcons& icons, QObject* parent);

  RuleList list() const { return list_; }
  /// The first column that holds texts to edit.
  int titleColumn() const;
  /// The column with the given identifier; -1 when there is none.
  int columnWithIdentifier(const char* identifier) const;

  /// Takes over the list's rows as they are now.
  void reloadData();

  int rowCount(const QModelIndex& parent = {}) const override;
  int columnCount(const QModelIndex& parent = {}) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;
  bool setData(const QModelIndex& index, const QVariant& value, int role) override;
  Qt::DropActions supportedDropActions() const override { return Qt::MoveAction; }

 Q_SIGNALS:
  /// The user has changed a row's switch.
  void switched(std::size_t row, const char* field, bool on);
  /// The user has ended the editing of a text with a new one.
  void retitled(const std::string& identifier, std::size_t row, const std::string& text);

 private:
  const RuleColumn& column(int section) const;
  RuleCell cell(const QModelIndex& index) const;
  QString localized(const char* text) const;
  QString accessibleText(const RuleColumn& column, const RuleCell& cell) const;
  QVariant appearance(const RuleColumn& column, const RuleCell& cell, int role) const;

  RuleList list_;
  Platform& platform_;
  RuleListEditing& editing_;
  const RuleRows& rows_;
  RowIcons& icons_;
  std::span<const RuleColumn> columns_;
  /// What the views know; the list may be a step ahead until reloadData.
  int shownRowCount_ = 0;
};

}  // namespace tavrin
