#include "platform/linux/panel/PanelBrowser.h"

#include <QCoreApplication>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMouseEvent>
#include <QShortcut>
#include <QSplitter>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "platform/linux/panel/PanelPathBar.h"
#include "platform/linux/panel/PanelPlaces.h"

namespace tavrin {

namespace {

constexpr QSize iconSize(20, 20);

template <typename... Arguments>
void tell(const std::function<void(Arguments...)>& event, const Arguments&... arguments) {
  if (event) event(arguments...);
}

}  // namespace

bool isReturn(const QKeyEvent& event) {
  return event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
}

PanelBrowser::PanelBrowser(const PanelRules& rules, HiddenFiles hiddenFiles,
                           bool allowsMultipleSelection, Events events, QWidget* parent)
    : QWidget(parent),
      rules_(rules),
      events_(std::move(events)),
      model_(new FolderListModel(rules, hiddenFiles, this)),
      fileList_(new QTreeView(this)),
      places_(new QListWidget(this)),
      pathBar_(new PanelPathBar(
          rules, [this](const FileURL& folder) { enterFolder(folder); }, this)),
      emptyHint_(new QLabel(fileList_->viewport())) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(10);
  layout->addWidget(pathBar_);
  makeFileList(allowsMultipleSelection);
  makePlaces();
  auto* splitter = new QSplitter(this);
  splitter->addWidget(places_);
  splitter->addWidget(fileList_);
  splitter->setStretchFactor(1, 1);
  splitter->setSizes({170, 640});
  splitter->setChildrenCollapsible(false);
  layout->addWidget(splitter, 1);
  auto* up = new QShortcut(QKeySequence(Qt::ALT | Qt::Key_Up), parent);
  QObject::connect(up, &QShortcut::activated, this, [this] { pathBar_->goUp(); });
}

void PanelBrowser::makeFileList(bool allowsMultipleSelection) {
  fileList_->setObjectName(QStringLiteral("fileList"));
  fileList_->setAccessibleName(QCoreApplication::translate("Tavrin", "Files"));
  fileList_->setModel(model_);
  fileList_->setRootIsDecorated(false);
  fileList_->setItemsExpandable(false);
  fileList_->setUniformRowHeights(true);
  fileList_->setAllColumnsShowFocus(true);
  fileList_->setAlternatingRowColors(true);
  fileList_->setTabKeyNavigation(false);
  fileList_->setIconSize(iconSize);
  fileList_->setTextElideMode(Qt::ElideMiddle);
  fileList_->setSelectionMode(allowsMultipleSelection ? QAbstractItemView::ExtendedSelection
                                                      : QAbstractItemView::SingleSelection);
  QHeaderView& header = *fileList_->header();
  header.setStretchLastSection(false);
  header.setSectionsMovable(false);
  header.setSectionResizeMode(FolderListModel::NameColumn, QHeaderView::Stretch);
  // The sizes end at the right border, apart from the dates, which begin at the left one.
  header.moveSection(FolderListModel::SizeColumn, FolderListModel::ModifiedColumn);
  header.resizeSection(FolderListModel::SizeColumn, 90);
  header.resizeSection(FolderListModel::ModifiedColumn, 170);

  emptyHint_->setObjectName(QStringLiteral("emptyHint"));
  emptyHint_->setEnabled(false);
  auto* hintLayout = new QVBoxLayout(fileList_->viewport());
  hintLayout->addWidget(emptyHint_, 0, Qt::AlignCenter);
  fileList_->installEventFilter(this);
  fileList_->viewport()->installEventFilter(this);
  QObject::connect(fileList_, &QTreeView::doubleClicked, this,
                   [this](const QModelIndex& index) { openRow(index.row()); });
  QObject::connect(fileList_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
                   [this] { tell(events_.selectionChanged); });
}

void PanelBrowser::makePlaces() {
  places_->setObjectName(QStringLiteral("places"));
  places_->setAccessibleName(QCoreApplication::translate("Tavrin", "Places"));
  places_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  places_->setTextElideMode(Qt::ElideMiddle);
  places_->setIconSize(iconSize);
  places_->setSpacing(1);
  for (const PanelPlace& place : panelPlaces()) {
    auto* item = new QListWidgetItem(
        PanelIcons::icon(QString::fromLatin1(place.themeIcon), place.symbol), place.name, places_);
    item->setData(Qt::UserRole, QByteArray::fromStdString(place.path));
    if (!rules_.isEnabled(FileURL::fileURLWithPath(place.path), true)) {
      item->setFlags(Qt::NoItemFlags);
    }
  }
  places_->installEventFilter(this);
  QObject::connect(places_, &QListWidget::itemClicked, this,
                   [this](QListWidgetItem* item) { openPlace(places_->row(item)); });
}

bool PanelBrowser::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress &&
      keyPressed(watched, static_cast<const QKeyEvent&>(*event))) {
    return true;
  }
  if (watched == fileList_->viewport() && event->type() == QEvent::MouseButtonPress) {
    const QPoint point = static_cast<const QMouseEvent&>(*event).position().toPoint();
    if (!fileList_->indexAt(point).isValid()) fileList_->clearSelection();
  }
  return QWidget::eventFilter(watched, event);
}

bool PanelBrowser::keyPressed(const QObject* widget, const QKeyEvent& event) {
  if (isReturn(event)) return returnPressed(widget);
  const bool isStart = event.text() == QLatin1String("/") || event.text() == QLatin1String("~");
  if (widget != fileList_ || !isStart || !events_.pathBegun) return false;
  events_.pathBegun(event.text());
  return true;
}

// Return is taken before the widget hands it on to the dialog, which would press the default
// button.
bool PanelBrowser::returnPressed(const QObject* widget) {
  if (widget == fileList_) {
    const std::vector<int> rows = selectedRows();
    rows.size() == 1 ? openRow(rows.front()) : tell(events_.confirmed);
  } else if (widget == places_) {
    openPlace(places_->currentRow());
  } else {
    return false;
  }
  return true;
}

void PanelBrowser::selectName(const std::string& name) {
  const std::optional<int> row = model_->rowOfName(name);
  if (!row) return;
  const QModelIndex index = model_->index(*row, FolderListModel::NameColumn);
  if (index.flags().testFlag(Qt::ItemIsSelectable)) fileList_->setCurrentIndex(index);
  fileList_->scrollTo(index, QAbstractItemView::PositionAtCenter);
}

void PanelBrowser::clearSelection() {
  fileList_->clearSelection();
}

void PanelBrowser::focusList() {
  fileList_->setFocus();
}

void PanelBrowser::enterFolder(const FileURL& folder, const std::string& nameToShow) {
  const FileURL previous = model_->folder();
  const Status listed = model_->setFolder(folder.path(), nameToShow);
  emptyHint_->setText(listed ? QCoreApplication::translate("Tavrin", "This folder is empty.")
                             : QCoreApplication::translate("Tavrin",
                                                           "The contents of this folder cannot be "
                                                           "shown."));
  emptyHint_->setVisible(model_->rowCount() == 0);
  pathBar_->setFolder(folder);
  fileList_->scrollToTop();
  tell(events_.folderShown);
  if (previous.deletingLastPathComponent() == folder) showWhereItCameFrom(previous);
}

/// Back in the parent, the keyboard stands on the folder it came from, which is not selected: the
/// way up is a way of picking the parent.
void PanelBrowser::showWhereItCameFrom(const FileURL& previous) {
  const std::optional<int> row = model_->rowOfName(previous.lastPathComponent());
  if (!row) return;
  const QModelIndex index = model_->index(*row, FolderListModel::NameColumn);
  fileList_->selectionModel()->setCurrentIndex(index, QItemSelectionModel::NoUpdate);
  fileList_->scrollTo(index, QAbstractItemView::PositionAtCenter);
}

void PanelBrowser::openRow(int row) {
  const FileURL url = model_->urlOfRow(row);
  if (!rules_.isEnabled(url, model_->isFolderRow(row))) return;
  model_->isFolderRow(row) ? enterFolder(url) : tell(events_.confirmed);
}

void PanelBrowser::openPlace(int row) {
  const QListWidgetItem* item = places_->item(row);
  if (item == nullptr || !item->flags().testFlag(Qt::ItemIsEnabled)) return;
  const QByteArray path = item->data(Qt::UserRole).toByteArray();
  enterFolder(FileURL::fileURLWithPath(path.toStdString()));
}

std::vector<int> PanelBrowser::selectedRows() const {
  std::vector<int> rows;
  const QModelIndexList indexes =
      fileList_->selectionModel()->selectedRows(FolderListModel::NameColumn);
  for (const QModelIndex& index : indexes) {
    if (index.flags().testFlag(Qt::ItemIsSelectable)) rows.push_back(index.row());
  }
  std::sort(rows.begin(), rows.end());
  return rows;
}

}  // namespace tavrin
