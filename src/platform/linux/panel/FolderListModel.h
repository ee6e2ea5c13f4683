#pragma once

#include <QAbstractTableModel>
#include <QString>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "foundation/FileURL.h"
#include "foundation/Result.h"
#include "platform/linux/FileIdentity.h"
#include "platform/linux/ScopeGrant.h"
#include "platform/linux/panel/PanelIcons.h"
#include "platform/linux/panel/PanelListing.h"
#include "platform/linux/panel/PanelRules.h"

namespace tavrin {

/// The items of one folder for a panel's list: folders first, then by name in the order of the
/// user's language. The folder is held by a handle. An item that the rules refuse is disabled.
/// Sizes, times and identities are asked of the disk for the rows that are drawn only.
class FolderListModel final : public QAbstractTableModel {
 public:
  enum Column { NameColumn, SizeColumn, ModifiedColumn, ColumnCount };

  FolderListModel(PanelRules rules, HiddenFiles hiddenFiles, QObject* parent);

  /// Shows the items of the folder at `path`, absolute. Its links are followed now, once, or make
  /// it unreadable where the rules name real paths. When it cannot be read the list is empty
  /// and the reason is returned. `nameToShow`, if not empty, is listed even when it is hidden.
  Status setFolder(const std::string& path, const std::string& nameToShow = std::string());

  /// The folder shown.
  const FileURL& folder() const { return folder_; }

  /// Takes hold of the item at a URL as what it is picked for. Fails when nothing can be opened
  /// there, when the rules name real paths and its path is none, and when the URL is the folder's
  /// or a row's and another item stands there than the one shown.
  Result<std::shared_ptr<const ScopeGrant>> take(const FileURL& url) const;

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
    /// Of the item, or of the one that its link leads to; nothing where there is none.
    std::optional<FileIdentity> identity;
  };
  struct Row {
    PanelEntry entry;
    QString name;
    std::optional<Details> details;
  };

  const Row& rowAt(int row) const { return rows_[static_cast<std::size_t>(row)]; }
  const Details& detailsOf(const Row& row) const;
  Details readDetails(const std::string& name) const;
  Result<std::shared_ptr<const ScopeGrant>> open(const std::string& path) const;
  bool isAsShown(const FileURL& url, const FileIdentity& identity) const;
  QString textOf(const Row& row, int column) const;
  void addHiddenName(std::vector<PanelEntry>& entries, const std::string& name) const;
  static std::vector<Row> sortedRows(std::vector<PanelEntry> entries);

  PanelRules rules_;
  HiddenFiles hiddenFiles_;
  FileURL folder_ = FileURL::fileURLWithPath("/");
  /// Nothing when the folder could not be opened.
  std::shared_ptr<const ScopeGrant> openFolder_;
  /// The details in it are filled in while drawing.
  mutable std::vector<Row> rows_;
  mutable PanelIcons icons_;
};

}  // namespace tavrin
