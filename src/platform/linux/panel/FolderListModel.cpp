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
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/SymlinkResolution.h"
#include "platform/linux/SystemErrors.h"

namespace tavrin {

FolderListModel::FolderListModel(PanelRules rules, HiddenFiles hiddenFiles, QObject* parent)
    : QAbstractTableModel(parent), rules_(std::move(rules)), hiddenFiles_(hiddenFiles) {}

Status FolderListModel::setFolder(const std::string& path, const std::string& nameToShow) {
  const auto opened = open(path);
  auto listing = opened ? listFolder(opened.value()->item(), path, hiddenFiles_)
                        : Result<std::vector<PanelEntry>>(opened.error());
  beginResetModel();
  folder_ = FileURL::fileURLWithPath(path);
  rows_.clear();
  openFolder_ = opened && opened.value()->isFolder() ? opened.value() : nullptr;
  Status listed = listing ? success() : Status(listing.error());
  if (listing) {
    if (!nameToShow.empty()) addHiddenName(listing.value(), nameToShow);
    rows_ = sortedRows(std::move(listing).value());
  }
  endResetModel();
  return listed;
}

Result<std::shared_ptr<const ScopeGrant>> FolderListModel::open(const std::string& path) const {
  return ScopeGrant::open(rules_.namesRealPaths() ? path : pathByResolvingSymlinks(path));
}

Result<std::shared_ptr<const ScopeGrant>> FolderListModel::take(const FileURL& url) const {
  auto item = open(url.path());
  if (item && !isAsShown(url, item.value()->identity())) {
    return systemError("pick", url.path(), std::errc::no_such_file_or_directory);
  }
  return item;
}

bool FolderListModel::isAsShown(const FileURL& url, const FileIdentity& identity) const {
  if (url == folder_) return openFolder_ && openFolder_->identity() == identity;
  if (!(url.deletingLastPathComponent() == folder_)) return true;
  const std::optional<int> row = rowOfName(url.lastPathComponent());
  return !row || detailsOf(rowAt(*row)).identity == identity;
}

void FolderListModel::addHiddenName(std::vector<PanelEntry>& entries,
                                    const std::string& name) const {
  const auto sameName = [&name](const PanelEntry& entry) { return entry.name == name; };
  if (std::any_of(entries.begin(), entries.end(), sameName)) return;
  struct stat status {};
  if (::fstatat(openFolder_->item(), name.c_str(), &status, 0) != 0) return;
  entries.push_back({name, S_ISDIR(status.st_mode)});
}

std::vector<FolderListModel::Row> FolderListModel::sortedRows(std::vector<PanelEntry> entries) {
  QCollator collator;
  collator.setNumericMode(true);
  collator.setCaseSensitivity(Qt::CaseInsensitive);
  std::vector<QString> names;
  std::vector<QCollatorSortKey> keys;
  names.reserve(entries.size());
  keys.reserve(entries.size());
  for (const PanelEntry& entry : entries) {
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
  if (!stored.details) stored.details = readDetails(row.entry.name);
  return *stored.details;
}

FolderListModel::Details FolderListModel::readDetails(const std::string& name) const {
  Details details;
  FileDescriptor item(::openat(openFolder_->item(), name.c_str(), O_PATH | O_CLOEXEC));
  if (const auto identity = identityAt(item.get(), ""); item && identity) {
    details.identity = identity.value();
  } else {
    item = FileDescriptor(
        ::openat(openFolder_->item(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
  }
  struct stat status {};
  if (!item || ::fstat(item.get(), &status) != 0) return details;
  details.size = status.st_size;
  details.modifiedSeconds = status.st_mtime;
  details.known = true;
  return details;
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
