#include <ui_PreferencesWindow.h>

#include "settings/window/SettingsViewController.h"

namespace tavrin {

// Tabs

void SettingsViewController::createNewFilePressed() {
  showTab(0);
}

void SettingsViewController::copyFilesToPressed() {
  showTab(1);
}

void SettingsViewController::commonPathPressed() {
  showTab(2);
}

void SettingsViewController::customIconFolder() {
  showTab(3);
}

void SettingsViewController::otherOptionPressed() {
  showTab(4);
}

void SettingsViewController::generalSettingsPressed() {
  showTab(5);
}

void SettingsViewController::learnPressed() {
  showTab(6);
}

void SettingsViewController::moreAppPressed() {
  showTab(7);
}

void SettingsViewController::contactUsPressed() {
  showTab(8);
}

// Selection

void SettingsViewController::createNewFileViewClick() {
  updateRemoveButton(RuleList::CreateNewFile);
}

void SettingsViewController::customIconViewClick() {
  updateRemoveButton(RuleList::CustomIcon);
}

void SettingsViewController::copyFilesToViewClick() {
  updateRemoveButton(RuleList::CopyFilesTo);
  outlets_.selectPathButton->setEnabled(selectedRow(RuleList::CopyFilesTo).has_value());
}

void SettingsViewController::commonPathViewClick() {
  updateRemoveButton(RuleList::CommonPath);
}

// Rules

void SettingsViewController::addCreateNewFileRule() {
  settings_.rules().addRule(RuleList::CreateNewFile);
}

void SettingsViewController::addSendFilesToRule() {
  settings_.rules().addRule(RuleList::CopyFilesTo);
}

void SettingsViewController::addCommonPathRule() {
  settings_.rules().addRule(RuleList::CommonPath);
}

void SettingsViewController::addCustomIconRule() {
  settings_.rules().addRule(RuleList::CustomIcon);
}

void SettingsViewController::selectPath(std::size_t row) {
  settings_.rules().selectPath(row);
}

void SettingsViewController::removeCreateNewFileRule() {
  settings_.rules().removeRule(RuleList::CreateNewFile);
}

void SettingsViewController::removeCopyFilesToRule() {
  settings_.rules().removeRule(RuleList::CopyFilesTo);
}

void SettingsViewController::removeCommondPathRule() {
  settings_.rules().removeRule(RuleList::CommonPath);
}

void SettingsViewController::removeCustomIconRule() {
  settings_.rules().removeRule(RuleList::CustomIcon);
}

void SettingsViewController::resetCreateNewFileRule() {
  settings_.rules().resetRule(RuleList::CreateNewFile);
}

void SettingsViewController::resetCopyFilesToRule() {
  settings_.rules().resetRule(RuleList::CopyFilesTo);
}

void SettingsViewController::resetOpenCommonPathRule() {
  settings_.rules().resetRule(RuleList::CommonPath);
}

void SettingsViewController::resetCustomIconRule() {
  settings_.rules().resetRule(RuleList::CustomIcon);
}

void SettingsViewController::resetOthersRule() {
  settings_.rules().resetRule(RuleList::Others);
}

void SettingsViewController::enableAllOfCreateNewFilesClick() {
  settings_.rules().enableAllClick(RuleList::CreateNewFile);
}

void SettingsViewController::enableAllOfCustomIconClick() {
  settings_.rules().enableAllClick(RuleList::CustomIcon);
}

void SettingsViewController::enableAllOfOthersClick() {
  settings_.rules().enableAllClick(RuleList::Others);
}

void SettingsViewController::OnOffcheckedStateChangedOfCreateNewFile(std::size_t row, bool on) {
  settings_.rules().switchRow(RuleList::CreateNewFile, row, record_field::enable, on);
}

void SettingsViewController::OnOffEnableMainMenuStateChangedOfCreateNewFile(std::size_t row,
                                                                            bool on) {
  settings_.rules().switchRow(RuleList::CreateNewFile, row, record_field::enableMainMenu, on);
}

void SettingsViewController::OnOffcheckedStateChangedOfCopyTo(std::size_t row, bool on) {
  settings_.rules().switchRow(RuleList::CopyFilesTo, row, record_field::enable, on);
}

void SettingsViewController::OnOffcheckedStateChangedOfCustomIcon(std::size_t row, bool on) {
  settings_.rules().switchRow(RuleList::CustomIcon, row, record_field::enable, on);
}

void SettingsViewController::OnOffcheckedStateChangedOfOthers(std::size_t row, bool on) {
  settings_.rules().switchRow(RuleList::Others, row, record_field::enable, on);
}

// Services

void SettingsViewController::textServiceCheckButtonClick() {
  settings_.textServiceCheckButtonClick();
}

void SettingsViewController::restartFinder() {
  settings_.restartFinder();
}

void SettingsViewController::showFileManagers() {
  settings_.openSystemPreferences();
}

// Links

void SettingsViewController::openLink(LinkAction action) {
  settings_.openLink(action);
}

void SettingsViewController::checkForUpdate() {
  openLink(LinkAction::checkForUpdate);
}

void SettingsViewController::gotoOfficialWebsite() {
  openLink(LinkAction::gotoOfficialWebsite);
}

void SettingsViewController::TeachingVideo() {
  openLink(LinkAction::TeachingVideo);
}

void SettingsViewController::FAQDocument() {
  openLink(LinkAction::FAQDocument);
}

void SettingsViewController::haveAGoodIdea() {
  openLink(LinkAction::haveAGoodIdea);
}

void SettingsViewController::technicalSupport() {
  openLink(LinkAction::technicalSupport);
}

void SettingsViewController::moreIconMaterial() {
  openLink(LinkAction::moreIconMaterial);
}

void SettingsViewController::aboutOtherPermissions() {
  openLink(LinkAction::aboutOtherPermissions);
}

void SettingsViewController::privacyPolicy() {
  openLink(LinkAction::privacyPolicy);
}

void SettingsViewController::termsOfUse() {
  openLink(LinkAction::termsOfUse);
}

void SettingsViewController::helpAboutService() {
  openLink(LinkAction::helpAboutService);
}

void SettingsViewController::helpAboutNewTemplateFile() {
  openLink(LinkAction::helpAboutNewTemplateFile);
}

void SettingsViewController::helpServicesOfSystemPreferences() {
  openLink(LinkAction::helpServicesOfSystemPreferences);
}

}  // namespace tavrin
