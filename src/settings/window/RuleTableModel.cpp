#include "settings/window/RuleTableModel.h"

#include <QGuiApplication>
#include <string>
#include <string_view>

namespace tavrin {

namespace {

QVariant alignment(bool isCentred) {
  return QVariant(Qt::AlignVCenter | (isCentred ? Qt::AlignHCenter : Qt::AlignLeading));
}

/// A tool tip would take a text with tags for one in HTML, and load its pictures.
QString plainToolTip(const std::string& text) {
  constexpr int longest = 500;
  const QString shown = QString::fromStdString(text).left(longest).toHtmlEscaped();
  return shown.isEmpty() ? shown : QStringLiteral("<qt>%1</qt>").arg(shown);
}

/// Paths and sizes read from left to right whatever surrounds them (Unicode's isolates).
QString shownText(const RuleCell& cell) {
  QString text = QString::fromStdString(cell.text);
  const bool isTitle = !cell.editingIdentifier.empty();
  if (isTitle || text.isEmpty() || !QGuiApplication::isRightToLeft()) return text;
  constexpr QChar leftToRightIsolate(0x2066);
  constexpr QChar popDirectionalIsolate(0x2069);
  return leftToRightIsolate + text + popDirectionalIsolate;
}

}  // namespace

RuleTableModel::RuleTableModel(RuleList list, Platform& platform, RuleListEditing& editing,
                               const RuleRows& rows, RowIcons& icons, QObject* parent)
    : QAbstractTableModel(parent),
      list_(list),
      platform_(platform),
      editing_(editing),
      rows_(rows),
      icons_(icons),
      columns_(columnsOfRuleList(list)) {}

const RuleColumn& RuleTableModel::column(int section) const {
  return columns_[static_cast<std::size_t>(section)];
}

int RuleTableModel::columnWithIdentifier(const char* identifier) const {
  for (int section = 0; section < columnCount(); ++section) {
    if (std::string_view(column(section).identifier) == identifier) return section;
  }
  return -1;
}

int RuleTableModel::titleColumn() const {
  int section = 0;
  while (column(section).kind != RuleColumn::Kind::Text) ++section;
  return section;
}

void RuleTableModel::reloadData() {
  const auto count = static_cast<int>(editing_.rows(list_).size());
  if (count != shownRowCount_) {
    beginResetModel();
    shownRowCount_ = count;
    endResetModel();
  } else if (count > 0) {
    Q_EMIT dataChanged(index(0, 0), index(count - 1, columnCount() - 1));
  }
}

int RuleTableModel::rowCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : shownRowCount_;
}

int RuleTableModel::columnCount(const QModelIndex& parent) const {
  return parent.isValid() ? 0 : static_cast<int>(columns_.size());
}

RuleCell RuleTableModel::cell(const QModelIndex& index) const {
  const PropertyList::Array& records = editing_.rows(list_);
  const auto row = static_cast<std::size_t>(index.row());
  if (!index.isValid() || row >= records.size()) return {};
  return rows_.cell(list_, column(index.column()), records[row]);
}

QString RuleTableModel::localized(const char* text) const {
  return QString::fromStdString(platform_.bundle.localizedString(text));
}

QString RuleTableModel::accessibleText(const RuleColumn& column, const RuleCell& cell) const {
  QString title = localized(column.title);
  const QString colon = QStringLiteral(": ");
  if (cell.isOn) return title + colon + (*cell.isOn ? localized("On") : localized("Off"));
  const std::string& content = cell.option.empty() ? cell.text : cell.chosenOption;
  if (content.empty()) return title;
  return title + colon + QString::fromStdString(content);
}

QVariant RuleTableModel::data(const QModelIndex& index, int role) const {
  if (!index.isValid()) return {};
  const RuleCell cell = this->cell(index);
  switch (role) {
    case Qt::DisplayRole:
      return cell.isOn || cell.iconSide > 0 ? QVariant() : shownText(cell);
    case Qt::EditRole:
      return QString::fromStdString(cell.text);
    case Qt::CheckStateRole:
      return cell.isOn ? QVariant(*cell.isOn ? Qt::Checked : Qt::Unchecked) : QVariant();
    case IsLockedRole:
      return cell.isOn && !cell.isSwitchEnabled;
    case OptionRole:
      return QString::fromStdString(cell.option);
    default:
      return appearance(column(index.column()), cell, role);
  }
}

QVariant RuleTableModel::appearance(const RuleColumn& column, const RuleCell& cell,
                                    int role) const {
  switch (role) {
    case Qt::DecorationRole:
      if (cell.iconSide == 0) return {};
      return icons_.pixmap(cell.icon, cell.iconSide, qGuiApp->devicePixelRatio());
    case IconSideRole:
      return cell.iconSide;
    case Qt::ToolTipRole:
      return plainToolTip(cell.text);
    case Qt::TextAlignmentRole:
      return alignment(cell.isCentred);
    case Qt::AccessibleTextRole:
      return accessibleText(column, cell);
    default:
      return {};
  }
}

QVariant RuleTableModel::headerData(int section, Qt::Orientation orientation, int role) const {
  if (orientation != Qt::Horizontal || section < 0 || section >= columnCount()) return {};
  const RuleColumn& column = this->column(section);
  switch (role) {
    case Qt::DisplayRole:
      return column.kind == RuleColumn::Kind::Icon ? QString() : localized(column.title);
    case Qt::AccessibleTextRole:
    case Qt::ToolTipRole:
      return localized(column.title);
    case Qt::TextAlignmentRole:
      return alignment(column.isCentred);
    default:
      return {};
  }
}

Qt::ItemFlags RuleTableModel::flags(const QModelIndex& index) const {
  if (!index.isValid()) return Qt::NoItemFlags;
  // Rows are dropped between others, never on one.
  Qt::ItemFlags flags =
      Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemIsDragEnabled | Qt::ItemNeverHasChildren;
  const RuleCell cell = this->cell(index);
  if (cell.isOn && cell.isSwitchEnabled) flags |= Qt::ItemIsUserCheckable;
  if (!cell.editingIdentifier.empty()) flags |= Qt::ItemIsEditable;
  return flags;
}

bool RuleTableModel::setData(const QModelIndex& index, const QVariant& value, int role) {
  const RuleCell cell = this->cell(index);
  const auto row = static_cast<std::size_t>(index.row());
  if (role == Qt::CheckStateRole && cell.isOn && cell.isSwitchEnabled) {
    Q_EMIT switched(row, cell.switchField, value.toInt() == Qt::Checked);
    return true;
  }
  if (role != Qt::EditRole || cell.editingIdentifier.empty()) return false;
  // A text that nobody changed would fix a title that follows the language or the folder.
  const QString text = value.toString();
  if (text == QString::fromStdString(cell.text)) return true;
  Q_EMIT retitled(cell.editingIdentifier, row, text.toStdString());
  return true;
}

}  // namespace tavrin
