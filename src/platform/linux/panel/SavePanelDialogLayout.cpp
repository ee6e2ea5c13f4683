// What the save panel's window is made of; what it does is in SavePanelDialog.cpp.

#include <QComboBox>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "platform/linux/DisplayText.h"
#include "platform/linux/panel/SavePanelDialog.h"

namespace tavrin {

namespace {

constexpr int popUpWidth = 225;

}  // namespace

SavePanelDialog::SavePanelDialog(const SavePanelOptions& options)
    : rules_(options.types, options.otherTypes),
      nameEdit_(new QLineEdit(this)),
      browser_(new PanelBrowser(
          {true, false, nullptr}, HiddenFiles::LeaveOut, false,
          {[this] { showState(); }, [this] { selectionChanged(); }, [this] { confirm(); }, {}},
          this)),
      hintLabel_(new QLabel(this)) {
  setObjectName(QStringLiteral("savePanel"));
  setWindowTitle(options.title.isEmpty() ? QCoreApplication::translate("Tavrin", "Save")
                                         : options.title);
  setWindowFlag(Qt::WindowStaysOnTopHint, options.isAboveOthers);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(14, 12, 14, 12);
  layout->setSpacing(10);
  makeNameRow(*layout);
  layout->addWidget(browser_, 1);
  if (options.accessory) makeAccessory(*layout, *options.accessory);
  makeButtons(*layout);
  resize(840, 560);
  showStart(options.directory);
  showName(rules_.finished(options.name));
  nameEdit_->setFocus();
}

void SavePanelDialog::makeNameRow(QVBoxLayout& layout) {
  auto* row = new QHBoxLayout;
  auto* label = new QLabel(QCoreApplication::translate("Tavrin", "&Name:"), this);
  label->setBuddy(nameEdit_);
  nameEdit_->setObjectName(QStringLiteral("nameEdit"));
  nameEdit_->setAccessibleName(QCoreApplication::translate("Tavrin", "Name"));
  row->addWidget(label);
  row->addWidget(nameEdit_, 1);
  layout.addLayout(row);
  nameEdit_->installEventFilter(this);
  QObject::connect(nameEdit_, &QLineEdit::textEdited, this, [this] { nameEdited(); });
}

void SavePanelDialog::makeAccessory(QVBoxLayout& layout, const PopUpAccessory& accessory) {
  auto* row = new QHBoxLayout;
  const QString text = displayText(accessory.label);
  auto* label = new QLabel(this);
  label->setTextFormat(Qt::PlainText);
  label->setText(text);
  label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  label->setForegroundRole(QPalette::PlaceholderText);
  auto* popUp = new QComboBox(this);
  popUp->setObjectName(QStringLiteral("accessoryPopUp"));
  popUp->setAccessibleName(text.endsWith(QLatin1Char(':')) ? text.chopped(1) : text);
  popUp->setMinimumWidth(popUpWidth);
  for (const std::string& item : accessory.items) popUp->addItem(displayName(item));
  row->addStretch(1);
  row->addWidget(label);
  row->addWidget(popUp);
  row->addStretch(1);
  layout.addLayout(row);
  QObject::connect(popUp, &QComboBox::currentIndexChanged, this,
                   [action = accessory.action](int index) {
                     if (action && index >= 0) action(static_cast<std::size_t>(index));
                   });
}

void SavePanelDialog::makeButtons(QVBoxLayout& layout) {
  hintLabel_->setObjectName(QStringLiteral("hintText"));
  hintLabel_->setTextFormat(Qt::PlainText);
  hintLabel_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  auto* buttons = new QDialogButtonBox(this);
  saveButton_ = buttons->addButton(QCoreApplication::translate("Tavrin", "Save"),
                                   QDialogButtonBox::AcceptRole);
  saveButton_->setObjectName(QStringLiteral("saveButton"));
  saveButton_->setDefault(true);
  QPushButton* cancel = buttons->addButton(QCoreApplication::translate("Tavrin", "Cancel"),
                                           QDialogButtonBox::RejectRole);
  cancel->setObjectName(QStringLiteral("cancelButton"));
  auto* row = new QHBoxLayout;
  row->addWidget(hintLabel_, 1);
  row->addWidget(buttons);
  layout.addLayout(row);
  QObject::connect(saveButton_, &QPushButton::clicked, this, [this] { confirm(); });
  QObject::connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
}

}  // namespace tavrin
