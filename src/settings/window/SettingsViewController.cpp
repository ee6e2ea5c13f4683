#include "settings/window/SettingsViewController.h"

#include <ui_PreferencesWindow.h>

#include <QImage>
#include <QMenu>
#include <QScrollBar>
#include <QShortcut>
#include <string_view>
#include <utility>

#include "settings/window/RuleTableModel.h"
#include "settings/window/RuleTableView.h"

namespace tavrin {

namespace {

const QColor clearColour(0, 0, 0, 0);

/// The grey colour at 0.4 of its strength, behind the entry of the page that is shown.
QColor chosenColour() {
  return QColor::fromRgbF(0.5F, 0.5F, 0.5F, 0.4F);
}

/// The drawings beside the entries of the sidebar, in their order.
constexpr std::array sidebarImages{
    "sidebar-createNewFile", "sidebar-copyFilesTo", "sidebar-commonPath",
    "sidebar-customIcon",    "sidebar-otherOption", "sidebar-generalSetting",
    "sidebar-learn",         "sidebar-moreApp",     "sidebar-contactUs",
};

}  // namespace

SettingsViewController::SettingsViewController(Ui::PreferencesWindow& outlets, Platform& platform,
                                               UserDefaults& standardUserDefaults,
                                               SettingsController& settings)
    : outlets_(outlets),
      platform_(platform),
      settings_(settings),
      rows_(platform),
      icons_(platform),
      bindings_(standardUserDefaults),
      options_(*outlets.optionShelf, *outlets.othersTableView, this),
      sidebar_{outlets.createNewFileButton, outlets.copyFilesToButton, outlets.commonPathToButton,
               outlets.customIconButton,    outlets.otherOptionButton, outlets.generalSettingButton,
               outlets.learnButton,         outlets.moreAppButton,     outlets.contacuUsButton} {}

SettingsViewController::~SettingsViewController() {
  settings_.setView(nullptr);
}

void SettingsViewController::awakeFromNib() {
  settings_.setView(this);
  makeLists();
  makeOptions();
  connectSidebar();
  connectListButtons();
  connectLinks();
  bindSwitches();
  addPageShortcuts();
  showTab(0);
  settings_.viewDidLoad();
  showVersion();
  viewDidLoad();
}

void SettingsViewController::viewDidLoad() {
  platform_.log.write("ddd");
}

void SettingsViewController::showVersion() {
  const std::string version =
      platform_.bundle.objectForInfoDictionaryKey("CFBundleShortVersionString").value_or("");
  outlets_.Version->setText(localized("Tavrin Pro") + QStringLiteral(": ") +
                            QString::fromStdString(version));
}

QString SettingsViewController::localized(const char* text) const {
  return QString::fromStdString(platform_.bundle.localizedString(text));
}

// Tabs

void SettingsViewController::connectSidebar() {
  constexpr std::array pressed{
      &SettingsViewController::createNewFilePressed,
      &SettingsViewController::copyFilesToPressed,
      &SettingsViewController::commonPathPressed,
      &SettingsViewController::customIconFolder,
      &SettingsViewController::otherOptionPressed,
      &SettingsViewController::generalSettingsPressed,
      &SettingsViewController::learnPressed,
      &SettingsViewController::moreAppPressed,
      &SettingsViewController::contactUsPressed,
  };
  for (std::size_t index = 0; index < sidebar_.size(); ++index) {
    connect(sidebar_.at(index), &QAbstractButton::clicked, this, pressed.at(index));
    const auto image = platform_.bundle.pathForResource(sidebarImages.at(index), "png");
    if (image) sidebar_.at(index)->setMask(QImage(QString::fromStdString(*image)));
  }
}

void SettingsViewController::addPageShortcuts() {
  for (int index = 0; index < static_cast<int>(sidebar_.size()); ++index) {
    const QKeySequence key(static_cast<int>(Qt::CTRL) | (Qt::Key_1 + index));
    auto* shortcut = new QShortcut(key, outlets_.content);
    SidebarButton* button = sidebar_.at(static_cast<std::size_t>(index));
    connect(shortcut, &QShortcut::activated, button, [button] {
      button->setFocus(Qt::ShortcutFocusReason);
      button->click();
    });
  }
}

void SettingsViewController::showTab(int index) {
  outlets_.tabView->setCurrentIndex(index);
  for (SidebarButton* button : sidebar_) button->setLayerBackground(clearColour);
  SidebarButton& chosen = *sidebar_.at(static_cast<std::size_t>(index));
  chosen.setLayerBackground(chosenColour());
  chosen.setChecked(true);
}

// Lists

SettingsViewController::ListOutlets& SettingsViewController::outletsOf(RuleList list) {
  return lists_.at(static_cast<std::size_t>(list));
}

const SettingsViewController::ListOutlets& SettingsViewController::outletsOf(RuleList list) const {
  return lists_.at(static_cast<std::size_t>(list));
}

void SettingsViewController::makeLists() {
  using Self = SettingsViewController;
  makeList(RuleList::CreateNewFile,
           {outlets_.createNewFileTableView, outlets_.removeCreateNewFileViewButton,
            &Self::removeCreateNewFileRule});
  makeList(RuleList::CopyFilesTo,
           {outlets_.copyFilesToTableView, outlets_.removeCopyFilesToViewButton,
            &Self::removeCopyFilesToRule});
  makeList(RuleList::CommonPath, {outlets_.commonPathTableView, outlets_.removeCommonPathViewButton,
                                  &Self::removeCommondPathRule});
  makeList(RuleList::CustomIcon, {outlets_.customIconTableView, outlets_.removeCustomIconViewButton,
                                  &Self::removeCustomIconRule});
  makeList(RuleList::Others, {outlets_.othersTableView, outlets_.removeOthersViewButton, nullptr});
}

void SettingsViewController::makeList(RuleList list, const ListOutlets& outlets) {
  ListOutlets& made = outletsOf(list);
  made = outlets;
  made.model = new RuleTableModel(list, platform_, settings_.rules(), rows_, icons_, made.table);
  made.table->setRuleModel(*made.model);
  made.model->reloadData();
  connectList(list);
}

void SettingsViewController::connectList(RuleList list) {
  const ListOutlets& outlets = outletsOf(list);
  RuleListEditing& rules = settings_.rules();
  connect(outlets.model, &RuleTableModel::switched, this,
          [this, list](std::size_t row, const char* field, bool on) {
            rowSwitched(list, row, field, on);
          });
  connect(outlets.model, &RuleTableModel::retitled, this,
          [&rules](const std::string& identifier, std::size_t row, const std::string& text) {
            rules.controlTextShouldEndEditing(identifier, row, text);
          });
  connect(outlets.table, &RuleTableView::rowDropped, this, [&rules, list](int source, int gap) {
    rules.acceptDrop(list, static_cast<std::size_t>(source), static_cast<std::size_t>(gap));
  });
  connect(outlets.table, &RuleTableView::moveRequested, this,
          [this, list](int from, int to) { moveRow(list, from, to); });
  connect(outlets.table, &RuleTableView::rowMenuRequested, this,
          [this, list](int row, const QPoint& position) { showRowMenu(list, row, position); });
  if (outlets.removeRule == nullptr) return;
  connect(outlets.removeButton, &QAbstractButton::clicked, this, outlets.removeRule);
  connect(outlets.table, &RuleTableView::removeRequested, outlets.removeButton,
          &QAbstractButton::click);
}

void SettingsViewController::connectListButtons() {
  using Self = SettingsViewController;
  const Ui::PreferencesWindow& ui = outlets_;
  const auto clicked = &QAbstractButton::clicked;
  connect(ui.createNewFileTableView, &RuleTableView::selectedRowChanged, this,
          &Self::createNewFileViewClick);
  connect(ui.customIconTableView, &RuleTableView::selectedRowChanged, this,
          &Self::customIconViewClick);
  connect(ui.copyFilesToTableView, &RuleTableView::selectedRowChanged, this,
          &Self::copyFilesToViewClick);
  connect(ui.commonPathTableView, &RuleTableView::selectedRowChanged, this,
          &Self::commonPathViewClick);
  connect(ui.addCreateNewFileRuleButton, clicked, this, &Self::addCreateNewFileRule);
  connect(ui.addSendFilesToRuleButton, clicked, this, &Self::addSendFilesToRule);
  connect(ui.addCommonPathRuleButton, clicked, this, &Self::addCommonPathRule);
  connect(ui.addCustomIconRuleButton, clicked, this, &Self::addCustomIconRule);
  connect(ui.resetCreateNewFileRuleButton, clicked, this, &Self::resetCreateNewFileRule);
  connect(ui.resetCopyFilesToRuleButton, clicked, this, &Self::resetCopyFilesToRule);
  connect(ui.resetOpenCommonPathRuleButton, clicked, this, &Self::resetOpenCommonPathRule);
  connect(ui.resetCustomIconRuleButton, clicked, this, &Self::resetCustomIconRule);
  connect(ui.resetOthersRuleButton, clicked, this, &Self::resetOthersRule);
  connect(ui.selectPathButton, clicked, this, [this] {
    if (const auto row = selectedRow(RuleList::CopyFilesTo)) selectPath(*row);
  });
  connect(ui.copyFilesToTableView, &QAbstractItemView::doubleClicked, this,
          [this](const QModelIndex& index) {
            const int path = outletsOf(RuleList::CopyFilesTo)
                                 .model->columnWithIdentifier(column_identifier::realPath);
            if (index.column() == path) selectPath(static_cast<std::size_t>(index.row()));
          });
}

void SettingsViewController::rowSwitched(RuleList list, std::size_t row, const char* field,
                                         bool on) {
  switch (list) {
    case RuleList::CreateNewFile:
      if (std::string_view(field) == record_field::enableMainMenu) {
        return OnOffEnableMainMenuStateChangedOfCreateNewFile(row, on);
      }
      return OnOffcheckedStateChangedOfCreateNewFile(row, on);
    case RuleList::CopyFilesTo:
      return OnOffcheckedStateChangedOfCopyTo(row, on);
    case RuleList::CustomIcon:
      return OnOffcheckedStateChangedOfCustomIcon(row, on);
    case RuleList::Others:
      return OnOffcheckedStateChangedOfOthers(row, on);
    case RuleList::CommonPath:
      break;
  }
}

void SettingsViewController::moveRow(RuleList list, int fromRow, int toRow) {
  settings_.rules().moveRow(list, static_cast<std::size_t>(fromRow),
                            static_cast<std::size_t>(toRow));
}

void SettingsViewController::showRowMenu(RuleList list, int row, const QPoint& position) {
  const ListOutlets& outlets = outletsOf(list);
  RuleTableView& table = *outlets.table;
  table.selectRow(row);
  QMenu menu(&table);
  menu.setPalette(table.palette());
  const QModelIndex title = outlets.model->index(row, outlets.model->titleColumn());
  QAction* rename = menu.addAction(localized("Rename"), &table, &RuleTableView::editTitle);
  rename->setShortcut(Qt::Key_F2);
  rename->setEnabled(outlets.model->flags(title) & Qt::ItemIsEditable);
  if (list == RuleList::CopyFilesTo) {
    menu.addAction(localized("Choose Folder…"), outlets_.selectPathButton, &QAbstractButton::click);
  }
  menu.addSeparator();
  QAction* up = menu.addAction(localized("Move Up"), this, [&] { moveRow(list, row, row - 1); });
  up->setShortcut(static_cast<int>(Qt::ALT) | Qt::Key_Up);
  up->setEnabled(row > 0);
  QAction* down =
      menu.addAction(localized("Move Down"), this, [&] { moveRow(list, row, row + 1); });
  down->setShortcut(static_cast<int>(Qt::ALT) | Qt::Key_Down);
  down->setEnabled(row + 1 < outlets.model->rowCount());
  if (outlets.removeRule != nullptr) {
    menu.addSeparator();
    menu.addAction(localized("Remove"), outlets.removeButton, &QAbstractButton::click)
        ->setShortcut(Qt::Key_Delete);
  }
  menu.exec(position);
}

void SettingsViewController::reloadData(RuleList list) {
  const ListOutlets& outlets = outletsOf(list);
  const auto selected = selectedRow(list);
  const int scrolled = outlets.table->verticalScrollBar()->value();
  outlets.model->reloadData();
  if (list == RuleList::Others) options_.place();
  if (selected != selectedRow(list)) selectRow(list, selected);
  outlets.table->verticalScrollBar()->setValue(scrolled);
}

std::optional<std::size_t> SettingsViewController::selectedRow(RuleList list) const {
  const int row = outletsOf(list).table->selectedRow();
  return row < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(row));
}

void SettingsViewController::selectRow(RuleList list, std::optional<std::size_t> row) {
  outletsOf(list).table->selectRow(row ? static_cast<int>(*row) : -1);
}

void SettingsViewController::setRemoveButtonEnabled(RuleList list, bool enabled) {
  outletsOf(list).removeButton->setEnabled(enabled);
}

void SettingsViewController::updateRemoveButton(RuleList list) {
  setRemoveButtonEnabled(list, selectedRow(list).has_value());
}

// Links

void SettingsViewController::connectLinks() {
  using Self = SettingsViewController;
  const Ui::PreferencesWindow& ui = outlets_;
  const auto clicked = &QAbstractButton::clicked;
  connect(ui.checkForUpdateButton, clicked, this, &Self::checkForUpdate);
  connect(ui.gotoOfficialWebsiteButton, clicked, this, &Self::gotoOfficialWebsite);
  connect(ui.TeachingVideoButton, clicked, this, &Self::TeachingVideo);
  connect(ui.FAQDocumentButton, clicked, this, &Self::FAQDocument);
  connect(ui.haveAGoodIdeaButton, clicked, this, &Self::haveAGoodIdea);
  connect(ui.technicalSupportButton, clicked, this, &Self::technicalSupport);
  connect(ui.moreIconMaterialButton, clicked, this, &Self::moreIconMaterial);
  connect(ui.aboutOtherPermissionsButton, clicked, this, &Self::aboutOtherPermissions);
  connect(ui.privacyPolicyButton, clicked, this, &Self::privacyPolicy);
  connect(ui.termsOfUseButton, clicked, this, &Self::termsOfUse);
  connect(ui.helpAboutServiceButton, clicked, this, &Self::helpAboutService);
  connect(ui.helpAboutNewTemplateFileButton, clicked, this, &Self::helpAboutNewTemplateFile);
  connect(ui.helpAboutNewTemplateFileLink, clicked, this, &Self::helpAboutNewTemplateFile);
  connect(ui.helpServicesOfSystemPreferencesButton, clicked, this,
          &Self::helpServicesOfSystemPreferences);
  const std::pair<QAbstractButton*, LinkAction> remaining[] = {
      {ui.whatIsNewButton, LinkAction::whatIsNew},
      {ui.translateTavrinButton, LinkAction::translateTavrin},
      {ui.sourceCodeButton, LinkAction::sourceCode},
      {ui.reportAProblemButton, LinkAction::reportAProblem},
      {ui.licenseButton, LinkAction::license},
  };
  for (const auto& [button, action] : remaining) {
    connect(button, clicked, this, [this, action = action] { openLink(action); });
  }
}

}  // namespace tavrin
