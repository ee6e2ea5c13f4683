#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "foundation/FileURL.h"
#include "foundation/Result.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/panel/FolderListing.h"
#include "platform/linux/panel/PanelIcons.h"
#include "platform/linux/panel/PanelRules.h"

namespace tavrin {

/// The items of one folder for a panel's list: folders first, then by name in the order of the
/// user's language. An item that the rules refuse is disabled. Sizes and times are asked of the
/// disk for the rows that are drawn only.
class FolderListModel final : public QAbstractTableModel {
 public:
  enum Column { NameColumn, SizeColumn, ModifiedColumn, ColumnCount };

  FolderListModel(PanelRules rules, HiddenFiles hiddenFiles, QObject* parent);

  /// Shows the items of the folder at `path`, absolute. When it cannot be read the list is empty
  /// and the reason is returned. `nameToShow`, if not empty, is listed even when it is hidden.
  Status setFolder(const std::string& path, const std::string& nameToShow = std::string());

  /// The folder shown.
  const FileURL& folder() const { return folder_; }

  FileURL urlOfRow(int row) const;
  bool isFolderRow(int row) const;
  /// The row of the item with exactly these bytes as its name.
  std::optional<int> rowOfName(const std::string& name) const;

  int rowCount(const QModelIndex& parent = QModelIndex()) const override;
  int columnCount(const QModelIndex& parent = QModelIndex()) const override;
  QVariant data(const QModelIndex& index, int role) const override;
  QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
  Qt::ItemFlags flags(const QModelIndex& index) const override;

 private:
  struct Details {
    std::int64_t size = 0;
    std::int64_t modifiedSeconds = 0;
    bool known = false;
  };
  struct Row {
    FolderEntry entry;
    QString name;
    std::optional<Details> details;
  };

  const Row& rowAt(int row) const { return rows_[static_cast<std::size_t>(row)]; }
  const Details& detailsOf(const Row& row) const;
  QString textOf(const Row& row, int column) const;
  void addHiddenName(std::vector<FolderEntry>& entries, const std::string& name) const;
  static std::vector<Row> sortedRows(std::vector<FolderEntry> entries);

  PanelRules rules_;
  HiddenFiles hiddenFiles_;
  FileURL folder_ = FileURL::fileURLWithPath("/");
  FileDescriptor openFolder_;
  /// The details in it are filled in while drawing.
  mutable std::vector<Row> rows_;
  mutable PanelIcons icons_;
};

}  // namespace tavrin
