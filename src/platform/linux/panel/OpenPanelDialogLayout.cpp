// What the panel's window is made of; what it does is in OpenPanelDialog.cpp.

#include <QApplication>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "platform/linux/ApplicationIcon.h"
#include "platform/linux/panel/OpenPanelDialog.h"

namespace tavrin {

namespace {

constexpr int widestText = 800;

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
      browser_(new PanelBrowser(
          options.rules, options.hiddenFiles, options.allowsMultipleSelection,
          {[this] { folderShown(); }, [this] { selectionChanged(); }, [this] { confirm(); },
           [this](const QString& text) { beginTypedPath(text); }},
          this)),
      locationEdit_(new QLineEdit(this)),
      problemLabel_(new QLabel(this)) {
  setObjectName(QStringLiteral("openPanel"));
  setWindowTitle(titleOf(options));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(14, 12, 14, 12);
  layout->setSpacing(10);
  addTexts(*layout);
  layout->addWidget(browser_, 1);
  makeLocationRow(*layout);
  makeButtons(*layout);
  resize(840, 580);
  browser_->focusList();
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
