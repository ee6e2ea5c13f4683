// What the panel's window is made of; what it does is in OpenPanelDialog.cpp.

#include <QApplication>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QTreeView>
#include <QVBoxLayout>

#include "platform/linux/ApplicationIcon.h"
#include "platform/linux/panel/OpenPanelDialog.h"
#include "platform/linux/panel/PanelPathBar.h"
#include "platform/linux/panel/PanelPlaces.h"

namespace tavrin {

namespace {

constexpr int widestText = 800;
constexpr QSize iconSize(20, 20);

QLabel* makeTextLabel(const QString& text, QWidget* parent) {
  auto* label = new QLabel(parent);
  label->setTextFormat(Qt::PlainText);
  label->setText(text);
  label->setWordWrap(true);
  label->setMaximumWidth(widestText);
  return label;
}

QString titleOf(const PanelOptions& options) {
  if (!options.title.isEmpty()) return options.title;
  return options.rules.canChooseFiles ? QCoreApplication::translate("Tavrin", "Open")
                                      : QCoreApplication::translate("Tavrin", "Choose a Folder");
}

}  // namespace

OpenPanelDialog::OpenPanelDialog(const PanelOptions& options, QWidget* parent)
    : QDialog(parent),
      options_(options),
      model_(new FolderListModel(options.rules, options.hiddenFiles, this)),
      fileList_(new QTreeView(this)),
      places_(new QListWidget(this)),
      pathBar_(new PanelPathBar(
          options.rules, [this](const FileURL& folder) { enterFolder(folder); }, this)),
      emptyHint_(new QLabel(fileList_->viewport())),
      locationEdit_(new QLineEdit(this)),
      problemLabel_(new QLabel(this)) {
  setObjectName(QStringLiteral("openPanel"));
  setWindowTitle(titleOf(options));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(14, 12, 14, 12);
  layout->setSpacing(10);
  addTexts(*layout);
  layout->addWidget(pathBar_);
  makeFileList();
  makePlaces();
  auto* splitter = new QSplitter(this);
  splitter->addWidget(places_);
  splitter->addWidget(fileList_);
  splitter->setStretchFactor(1, 1);
  splitter->setSizes({170, 640});
  splitter->setChildrenCollapsible(false);
  layout->addWidget(splitter, 1);
  makeLocationRow(*layout);
  makeButtons(*layout);
  auto* up = new QShortcut(QKeySequence(Qt::ALT | Qt::Key_Up), this);
  QObject::connect(up, &QShortcut::activated, this, [this] { pathBar_->goUp(); });
  resize(840, 580);
  fileList_->setFocus();
  showStart();
}

void OpenPanelDialog::addTexts(QVBoxLayout& layout) {
  if (!options_.message.isEmpty()) {
    QLabel* message = makeTextLabel(options_.message, this);
    message->setObjectName(QStringLiteral("messageText"));
    layout.addWidget(message);
  }
  if (options_.accessoryText.isEmpty()) return;
  auto* row = new QHBoxLayout;
  row->setSpacing(14);
  ensureApplicationIcon();
  auto* icon = new QLabel(this);
  icon->setPixmap(QApplication::windowIcon().pixmap(48, 48));
  icon->setHidden(QApplication::windowIcon().isNull());
  QLabel* accessory = makeTextLabel(options_.accessoryText, this);
  accessory->setObjectName(QStringLiteral("accessoryText"));
  row->addWidget(icon);
  row->addWidget(accessory, 1);
  layout.addLayout(row);
}

void OpenPanelDialog::makeFileList() {
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
  fileList_->setSelectionMode(options_.allowsMultipleSelection
                                  ? QAbstractItemView::ExtendedSelection
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
                   [this] { selectionChanged(); });
}

void OpenPanelDialog::makePlaces() {
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
    if (!options_.rules.isEnabled(FileURL::fileURLWithPath(place.path), true)) {
      item->setFlags(Qt::NoItemFlags);
    }
  }
  places_->installEventFilter(this);
  QObject::connect(places_, &QListWidget::itemClicked, this,
                   [this](QListWidgetItem* item) { openPlace(places_->row(item)); });
}

void OpenPanelDialog::makeLocationRow(QVBoxLayout& layout) {
  auto* row = new QHBoxLayout;
  auto* label = new QLabel(QCoreApplication::translate("Tavrin", "&Location:"), this);
  label->setBuddy(locationEdit_);
  locationEdit_->setObjectName(QStringLiteral("locationEdit"));
  locationEdit_->setAccessibleName(QCoreApplication::translate("Tavrin", "Location"));
  problemLabel_->setObjectName(QStringLiteral("problemText"));
  problemLabel_->setTextFormat(Qt::PlainText);
  row->addWidget(label);
  row->addWidget(locationEdit_, 1);
  layout.addLayout(row);
  locationEdit_->installEventFilter(this);
  QObject::connect(locationEdit_, &QLineEdit::textEdited, this, [this] { locationEdited(); });
}

void OpenPanelDialog::makeButtons(QVBoxLayout& layout) {
  auto* buttons = new QDialogButtonBox(this);
  QString prompt =
      options_.prompt.isEmpty() ? QCoreApplication::translate("Tavrin", "Open") : options_.prompt;
  prompt.replace(QLatin1Char('&'), QLatin1String("&&"));
  promptButton_ = buttons->addButton(prompt, QDialogButtonBox::AcceptRole);
  promptButton_->setObjectName(QStringLiteral("promptButton"));
  promptButton_->setDefault(true);
  QPushButton* cancel = buttons->addButton(QCoreApplication::translate("Tavrin", "Cancel"),
                                           QDialogButtonBox::RejectRole);
  cancel->setObjectName(QStringLiteral("cancelButton"));
  auto* row = new QHBoxLayout;
  row->addWidget(problemLabel_, 1);
  row->addWidget(buttons);
  layout.addLayout(row);
  QObject::connect(promptButton_, &QPushButton::clicked, this, [this] { confirm(); });
  QObject::connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

}  // namespace tavrin
