#pragma once

#include <QObject>
#include <array>
#include <cstddef>
#include <memory>
#include <string>

#include "platform/Platform.h"
#include "settings/Links.h"
#include "settings/RuleRows.h"
#include "settings/SettingsController.h"
#include "settings/SettingsView.h"
#include "settings/window/OptionCells.h"
#include "settings/window/RowIcons.h"
#include "settings/window/SwitchBindings.h"

class QAbstractButton;

namespace Ui {
class PreferencesWindow;
}

namespace tavrin {

class RuleTableModel;
class RuleTableView;
class SidebarButton;

/// What the controls of the preferences window do. The outlets are the objects of
/// PreferencesWindow.ui; the slots are their actions, and what an edit does stands in
/// RuleListEditing. Rows are zero-based.
class SettingsViewController final : public QObject, public SettingsView {
  Q_OBJECT

 public:
  /// All outlive this object. Takes the controls as they come from the interface file.
  SettingsViewController(Ui::PreferencesWindow& outlets, Platform& platform,
                         UserDefaults& standardUserDefaults, SettingsController& settings);
  ~SettingsViewController() override;
  SettingsViewController(const SettingsViewController&) = delete;
  SettingsViewController& operator=(const SettingsViewController&) = delete;

  /// Connects the controls and has the settings published; to be called once, after the making.
  void awakeFromNib();
  void viewDidLoad();

  void reloadData(RuleList list) override;
  std::optional<std::size_t> selectedRow(RuleList list) const override;
  void selectRow(RuleList list, std::optional<std::size_t> row) override;
  void setRemoveButtonEnabled(RuleList list, bool enabled) override;

 public Q_SLOTS:  // NOLINT(readability-redundant-access-specifiers): what they are to Qt
  void createNewFilePressed() override;
  void copyFilesToPressed();
  void commonPathPressed();
  void customIconFolder();
  void otherOptionPressed();
  void generalSettingsPressed();
  void learnPressed();
  void moreAppPressed();
  void contactUsPressed();

  void createNewFileViewClick();
  void customIconViewClick();
  void copyFilesToViewClick();
  void commonPathViewClick();

  void addCreateNewFileRule();
  void addSendFilesToRule();
  void addCommonPathRule();
  void addCustomIconRule();
  void selectPath(std::size_t row);
  void removeCreateNewFileRule();
  void removeCopyFilesToRule();
  void removeCommondPathRule();
  void removeCustomIconRule();
  void resetCreateNewFileRule();
  void resetCopyFilesToRule();
  void resetOpenCommonPathRule();
  void resetCustomIconRule();
  void resetOthersRule();
  void enableAllOfCreateNewFilesClick();
  void enableAllOfCustomIconClick();
  void enableAllOfOthersClick();
  void OnOffcheckedStateChangedOfCreateNewFile(std::size_t row, bool on);
  void OnOffEnableMainMenuStateChangedOfCreateNewFile(std::size_t row, bool on);
  void OnOffcheckedStateChangedOfCopyTo(std::size_t row, bool on);
  void OnOffcheckedStateChangedOfCustomIcon(std::size_t row, bool on);
  void OnOffcheckedStateChangedOfOthers(std::size_t row, bool on);

  void textServiceCheckButtonClick();
  void restartFinder();
  void showFileManagers();

  void checkForUpdate();
  void gotoOfficialWebsite();
  void TeachingVideo();
  void FAQDocument();
  void haveAGoodIdea();
  void technicalSupport();
  void moreIconMaterial();
  void aboutOtherPermissions();
  void privacyPolicy();
  void termsOfUse();
  void helpAboutService();
  void helpAboutNewTemplateFile();
  void helpServicesOfSystemPreferences();

 private:
  /// The table of a list with what belongs to it.
  struct ListOutlets {
    RuleTableView* table = nullptr;
    QAbstractButton* removeButton = nullptr;
    void (SettingsViewController::*removeRule)() = nullptr;
    RuleTableModel* model = nullptr;
  };

  ListOutlets& outletsOf(RuleList list);
  const ListOutlets& outletsOf(RuleList list) const;
  void showVersion();
  void makeLists();
  void makeList(RuleList list, const ListOutlets& outlets);
  void connectList(RuleList list);
  void connectSidebar();
  void connectListButtons();
  void connectLinks();
  void bindSwitches();
  void makeOptions();
  void addPageShortcuts();
  void showTab(int index);
  void rowSwitched(RuleList list, std::size_t row, const char* field, bool on);
  void showRowMenu(RuleList list, int row, const QPoint& position);
  void moveRow(RuleList list, int fromRow, int toRow);
  void updateRemoveButton(RuleList list);
  void openLink(LinkAction action);
  QString localized(const char* text) const;

  Ui::PreferencesWindow& outlets_;
  Platform& platform_;
  SettingsController& settings_;
  RuleRows rows_;
  RowIcons icons_;
  SwitchBindings bindings_;
  OptionCells options_;
  std::array<ListOutlets, ruleLists.size()> lists_;
  std::array<SidebarButton*, 9> sidebar_;
};

}  // namespace tavrin
