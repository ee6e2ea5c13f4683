#include "platform/linux/panel/PanelPathBar.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QToolButton>
#include <utility>

#include "platform/linux/DisplayText.h"
#include "platform/linux/panel/PanelIcons.h"

namespace tavrin {

namespace {

constexpr int widestButton = 220;

QString buttonLabel(const QToolButton& button, const QString& name) {
  QString label = button.fontMetrics().elidedText(name, Qt::ElideMiddle, widestButton);
  return label.replace(QLatin1Char('&'), QLatin1String("&&"));
}

}  // namespace

PanelPathBar::PanelPathBar(PanelRules rules, std::function<void(const FileURL&)> open,
                           QWidget* parent)
    : QWidget(parent),
      rules_(std::move(rules)),
      open_(std::move(open)),
      upButton_(new QToolButton(this)),
      strip_(new QWidget(this)),
      stripLayout_(new QHBoxLayout(strip_)) {
  setObjectName(QStringLiteral("pathBar"));
  setAccessibleName(QCoreApplication::translate("Tavrin", "Path"));
  const QString upText = QCoreApplication::translate("Tavrin", "Enclosing folder");
  upButton_->setObjectName(QStringLiteral("upButton"));
  upButton_->setAutoRaise(true);
  upButton_->setIcon(PanelIcons::icon(QStringLiteral("go-up-symbolic"), PanelIcons::Symbol::Up));
  upButton_->setToolTip(upText + QStringLiteral(" (Alt+\u2191)"));
  upButton_->setAccessibleName(upText);
  QObject::connect(upButton_, &QToolButton::clicked, this, &PanelPathBar::goUp);

  strip_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  stripLayout_->setContentsMargins(0, 0, 0, 0);
  stripLayout_->setSpacing(0);
  auto* layout = new QHBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->addWidget(upButton_);
  layout->addWidget(strip_, 1);
}

void PanelPathBar::setFolder(const FileURL& folder) {
  folder_ = folder;
  const FileURL parent = folder.deletingLastPathComponent();
  upButton_->setEnabled(!(parent == folder) && rules_.isEnabled(parent, true));
  while (QLayoutItem* item = stripLayout_->takeAt(0)) {
    // Later: this may run inside the click of one of them.
    if (item->widget() != nullptr) item->widget()->hide();
    if (item->widget() != nullptr) item->widget()->deleteLater();
    delete item;
  }
  buttons_.clear();
  std::vector<FileURL> way{folder};
  while (!(way.back() == way.back().deletingLastPathComponent())) {
    way.push_back(way.back().deletingLastPathComponent());
  }
  for (auto url = way.rbegin(); url != way.rend(); ++url) {
    buttons_.push_back(makeComponentButton(*url, *url == folder));
    stripLayout_->addWidget(buttons_.back());
  }
  stripLayout_->addStretch(1);
  showButtonsThatFit();
}

QToolButton* PanelPathBar::makeComponentButton(const FileURL& url, bool isLast) {
  auto* button = new QToolButton(strip_);
  const QString name = displayName(url.lastPathComponent());
  button->setAutoRaise(true);
  button->setCheckable(true);
  button->setChecked(isLast);
  button->setAccessibleName(name);
  button->setToolTip(displayName(url.path()));
  button->setEnabled(rules_.isEnabled(url, true));
  if (url.path() == "/") {
    button->setIcon(
        PanelIcons::icon(QStringLiteral("drive-harddisk-symbolic"), PanelIcons::Symbol::Volume));
  } else {
    button->setText(buttonLabel(*button, name));
  }
  QObject::connect(button, &QToolButton::clicked, this, [this, button, url, isLast] {
    button->setChecked(isLast);
    if (!isLast) open_(url);
  });
  return button;
}

void PanelPathBar::goUp() {
  if (upButton_->isEnabled()) open_(folder_.deletingLastPathComponent());
}

void PanelPathBar::showButtonsThatFit() {
  int room = strip_->width();
  bool fits = true;
  for (auto button = buttons_.rbegin(); button != buttons_.rend(); ++button) {
    room -= (*button)->sizeHint().width();
    fits = fits && (room >= 0 || button == buttons_.rbegin());
    (*button)->setVisible(fits);
  }
}

void PanelPathBar::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  showButtonsThatFit();
}

}  // namespace tavrin
