#include "platform/linux/panel/FolderListModel.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <QCollator>
#include <QCoreApplication>
#include <QDateTime>
#include <QLocale>
#include <algorithm>
#include <numeric>
#include <utility>

#include "foundation/PathString.h"
#include "platform/linux/DisplayText.h"

namespace tavrin {

FolderListModel::FolderListModel(PanelRules rules, HiddenFiles hiddenFiles, QObject* parent)
    : QAbstractTableModel(parent), rules_(rules), hiddenFiles_(hiddenFiles) {}

Status FolderListModel::setFolder(const std::string& path, const std::string& nameToShow) {
  Result<FolderListing> listing = listFolder(path, hiddenFiles_);
  beginResetModel();
  folder_ = FileURL::fileURLWithPath(path);
  rows_.clear();
  openFolder_.reset();
  if (listing) {
    openFolder_ = std::move(listing.value().folder);
    if (!nameToShow.empty()) addHiddenName(listing.value().entries, nameToShow);
    rows_ = sortedRows(std::move(listing.value().entries));
  }
  endResetModel();
  if (!listing) return listing.error();
  return success();
}

void FolderListModel::addHiddenName(std::vector<FolderEntry>& entries,
                                    const std::string& name) const {
  const auto sameName = [&name](const FolderEntry& entry) { return entry.name == name; };
  if (std::any_of(entries.begin(), entries.end(), sameName)) return;
  struct stat status {};
  if (::fstatat(openFolder_.get(), name.c_str(), &status, 0) != 0) return;
  entries.push_back({name, S_ISDIR(status.st_mode)});
}

std::vector<FolderListModel::Row> FolderListModel::sortedRows(std::vector<FolderEntry> entries) {
  QCollator collator;
  collator.setNumericMode(true);
  collator.setCaseSensitivity(Qt::CaseInsensitive);
  std::vector<QString> names;
  std::vector<QCollatorSortKey> keys;
  names.reserve(entries.size());
  keys.reserve(entries.size());
  for (const FolderEntry& entry : entries) {
    names.push_back(displayName(entry.name));
    keys.push_back(collator.sortKey(names.back()));
  }
  std::vector<std::size_t> order(entries.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::sort(order.begin(), order.end(), [&](std::size_t left, std::size_t right) {
    if (entries[left].isFolder != entries[right].isFolder) return entries[left].isFolder;
    const int byName = keys[left].compare(keys[right]);
    return byName != 0 ? byName < 0 : entries[left].name < entries[right].name;
  });
  std::vector<Row> rows;
  rows.reserve(order.size());
  for (const std::size_t index : order) {
    rows.push_back({std::move(entries[index]), std::move(names[index]), std::nullopt});
  }
  return rows;
}

FileURL FolderListModel::urlOfRow(int row) const {
  return FileURL::fileURLWithPath(appendingPathComponent(folder_.path(), rowAt(row).entry.name));
}

bool FolderListModel::isFolderRow(int row) const {
  return rowAt(row).entry.isFolder;
}

std::optional<int> FolderListModel::rowOfName(const std::string& name) const {
  const auto found = std::find_if(rows_.begin(), rows_.end(),
                                  [&name](const Row& row) { return row.entry.name == name; });
  if (found == rows_.end()) return std::nullopt;
  return static_cast<int>(found - rows_.begin());
}

int FolderListModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

int FolderListModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : ColumnCount;
}

QVariant FolderListModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const Row& row = rowAt(index.row());
  const bool isName = index.column() == NameColumn;
  if (role == Qt::DisplayRole) return textOf(row, index.column());
  if (role == Qt::ToolTipRole && isName) return row.name;
  if (role == Qt::DecorationRole && isName) {
    return icons_.iconOfItem(row.name, row.entry.isFolder);
  }
  if (role == Qt::TextAlignmentRole && index.column() == SizeColumn) {
    return QVariant(Qt::AlignRight | Qt::AlignVCenter);
  }
  return {};
}

QVariant FolderListModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal) return {};
  if (role == Qt::TextAlignmentRole) {
    return QVariant((section == SizeColumn ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
  }
  if (role != Qt::DisplayRole) return {};
  switch (section) {
    case NameColumn:
      return QCoreApplication::translate("Tavrin", "Name");
    case SizeColumn:
      return QCoreApplication::translate("Tavrin", "Size");
    default:
      return QCoreApplication::translate("Tavrin", "Modified");
  }
}

Qt::ItemFlags FolderListModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  const bool enabled = rules_.isEnabled(urlOfRow(index.row()), isFolderRow(index.row()));
  const Qt::ItemFlags flags = Qt::ItemNeverHasChildren;
  return enabled ? flags | Qt::ItemIsEnabled | Qt::ItemIsSelectable : flags;
}

const FolderListModel::Details& FolderListModel::detailsOf(const Row& row) const {
  Row& stored = rows_[static_cast<std::size_t>(&row - rows_.data())];
  if (stored.details) return *stored.details;
  Details details;
  struct stat status {};
  if (::fstatat(openFolder_.get(), row.entry.name.c_str(), &status, 0) == 0 ||
      ::fstatat(openFolder_.get(), row.entry.name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) {
    details = {status.st_size, status.st_mtime, true};
  }
  return stored.details.emplace(details);
}

QString FolderListModel::textOf(const Row& row, int column) const {
  if (column == NameColumn) return row.name;
  const Details& details = detailsOf(row);
  if (!details.known) return {};
  if (column == SizeColumn) {
    return row.entry.isFolder
               ? QString()
               : QLocale().formattedDataSize(details.size, 1, QLocale::DataSizeSIFormat);
  }
  return QLocale().toString(QDateTime::fromSecsSinceEpoch(details.modifiedSeconds),
                            QLocale::ShortFormat);
}

}  // namespace tavrin
