#include "extensions/common/MenuExtension.h"

namespace tavrin {

struct MenuExtension::State {
  FileManager fileManager;
  std::shared_ptr<const OpenedMenu> none = std::make_shared<OpenedMenu>();
  Changed changed;
};

MenuExtension::MenuExtension(FileManager fileManager) noexcept : state_(new State) {
  state_->fileManager = std::move(fileManager);
}

MenuExtension::~MenuExtension() = default;

std::shared_ptr<const OpenedMenu> MenuExtension::menuForItems(
    std::shared_ptr<const SelectedItems>) noexcept {
  return state_->none;
}

std::shared_ptr<const OpenedMenu> MenuExtension::menuForFolder(const std::string&) noexcept {
  return state_->none;
}

std::shared_ptr<const OpenedMenu> MenuExtension::menuForFolderOrItem(
    std::shared_ptr<const SelectedItems>) noexcept {
  return state_->none;
}

void MenuExtension::activate(const OpenedMenu&, const MenuItem&) noexcept {}

bool MenuExtension::isCut(const std::string&) noexcept {
  return false;
}

void MenuExtension::onChange(Changed changed) noexcept {
  state_->changed = std::move(changed);
}

}  // namespace tavrin
