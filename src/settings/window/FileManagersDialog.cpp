#include "settings/window/FileManagersDialog.h"

#include <QCheckBox>
#include <QEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "foundation/Translatable.h"
#include "settings/window/ChildWidgets.h"

namespace tavrin {

namespace {

constexpr int iconSide = 32;
constexpr int textWidth = 440;

enum Column { iconColumn, boxColumn, stateColumn };

const char* textOf(ExtensionHost::State state) {
  switch (state) {
    case ExtensionHost::State::On:
      return translatable("The menu is on");
    case ExtensionHost::State::Off:
      return translatable("The menu is off");
    case ExtensionHost::State::Missing:
      break;
  }
  return translatable("The menu is not installed");
}

}  // namespace

FileManagersDialog::FileManagersDialog(Platform& platform, SettingsController& settings,
                                       WindowPalette palette, QWidget* parent)
    : QDialog(parent), platform_(platform), settings_(settings), palette_(std::move(palette)) {
  setWindowTitle(localized("File Managers"));
  layOut();
  showHosts();
  observation_ = platform.extensionController.observeHosts([this] { showHosts(); });
}

void FileManagersDialog::layOut() {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(20, 18, 20, 16);
  layout->setSpacing(14);
  layout->addWidget(
      makeText(translatable("Tavrin's menu opens with a right click in these file managers:")));
  list_ = new QWidget(this);
  layout->addWidget(list_);
  layout->addStretch();
  hint_ = makeText(translatable(
      "A change counts from the next right click. Where the menu does not show up although it is "
      "on, the file manager has to be restarted."));
  layout->addWidget(hint_);
  restartButton_ = new QPushButton(localized("Restart File Manager"), this);
  restartButton_->setAutoDefault(false);
  auto* close = new QPushButton(localized("Close"), this);
  close->setDefault(true);
  auto* buttons = new QHBoxLayout();
  buttons->addWidget(restartButton_);
  buttons->addStretch();
  buttons->addWidget(close);
  layout->addLayout(buttons);
  layout->setSizeConstraint(QLayout::SetFixedSize);
  connect(close, &QPushButton::clicked, this, &QDialog::reject);
  connect(restartButton_, &QPushButton::clicked, this, [this] { settings_.restartFinder(); });
}

void FileManagersDialog::showHosts() {
  const std::vector<ExtensionHost> hosts = platform_.extensionController.hosts();
  const bool isSame =
      std::ranges::equal(hosts, rows_, {}, &ExtensionHost::identifier, &Row::identifier);
  if (!isSame || rows_.empty()) return makeRows(hosts);
  for (std::size_t index = 0; index < hosts.size(); ++index) {
    showState(rows_[index], hosts[index].state);
  }
}

void FileManagersDialog::makeRows(const std::vector<ExtensionHost>& hosts) {
  rows_.clear();
  auto* list = new QWidget(this);
  delete layout()->replaceWidget(list_, list);
  delete std::exchange(list_, list);
  auto* grid = new QGridLayout(list);
  grid->setContentsMargins(0, 0, 0, 0);
  grid->setHorizontalSpacing(12);
  grid->setVerticalSpacing(10);
  grid->setColumnStretch(boxColumn, 1);
  for (const ExtensionHost& host : hosts) makeRow(host);
  // They would come after the buttons otherwise.
  QWidget* last = this;
  for (const Row& row : rows_) setTabOrder(std::exchange(last, row.box), row.box);
  setTabOrder(last, restartButton_);
  if (hosts.empty()) {
    grid->addWidget(
        makeText(translatable("None of them is installed: Nautilus, Nemo, Caja, Thunar, Dolphin.")),
        0, boxColumn);
  }
  hint_->setVisible(!hosts.empty());
  restartButton_->setEnabled(!hosts.empty());
  setColours(palette_);
  alignLabels(*this);
}

void FileManagersDialog::makeRow(const ExtensionHost& host) {
  auto* grid = static_cast<QGridLayout*>(list_->layout());
  const int line = static_cast<int>(rows_.size());
  const QString name = QString::fromStdString(host.displayName);
  auto* box = new QCheckBox(QString(name).replace(u'&', QStringLiteral("&&")), list_);
  box->setAccessibleName(name);
  rows_.push_back({host.identifier, box, new QLabel(list_)});
  grid->addWidget(makeIcon(host.identifier), line, iconColumn);
  grid->addWidget(box, line, boxColumn);
  grid->addWidget(rows_.back().state, line, stateColumn);
  showState(rows_.back(), host.state);
  connect(box, &QCheckBox::clicked, this, [this, identifier = host.identifier](bool on) {
    platform_.extensionController.setEnabled(identifier, on);
    // What the file manager's own settings say may still hold.
    showHosts();
  });
}

void FileManagersDialog::showState(const Row& row, ExtensionHost::State state) {
  row.state->setText(localized(textOf(state)));
  row.box->setAccessibleDescription(row.state->text());
  row.box->setChecked(state == ExtensionHost::State::On);
  row.box->setEnabled(state != ExtensionHost::State::Missing);
}

QLabel* FileManagersDialog::makeIcon(const std::string& identifier) {
  auto* label = new QLabel(list_);
  const qreal ratio = devicePixelRatioF();
  const int pixels = qRound(iconSide * ratio);
  const auto icon = platform_.extensionController.iconOfHost(identifier, pixels);
  QPixmap pixmap;
  if (icon) pixmap.loadFromData(icon->data(), static_cast<unsigned>(icon->size()));
  pixmap.setDevicePixelRatio(ratio);
  label->setPixmap(pixmap);
  label->setFixedSize(iconSide, iconSide);
  return label;
}

QLabel* FileManagersDialog::makeText(const char* text) {
  auto* label = new QLabel(localized(text), this);
  label->setTextFormat(Qt::PlainText);
  label->setWordWrap(true);
  label->setMinimumWidth(textWidth);
  return label;
}

void FileManagersDialog::setColours(const WindowPalette& palette) {
  palette_ = palette;
  setPalette(palette.controls());
  setSwitchPalettes(*this, palette.controls());
  for (const Row& row : rows_) row.state->setPalette(palette.secondary());
  hint_->setPalette(palette.secondary());
}

void FileManagersDialog::changeEvent(QEvent* event) {
  if (event->type() == QEvent::ActivationChange && isActiveWindow()) showHosts();
  QDialog::changeEvent(event);
}

QString FileManagersDialog::localized(const char* text) const {
  return QString::fromStdString(platform_.bundle.localizedString(text));
}

}  // namespace tavrin
