#include "app/AppDelegate.h"

namespace tavrin {

void AppDelegate::notAvailableYet() {
  platform_.log.write("not available yet: " + actionInHand_->name());
}

void AppDelegate::createNewFile(const ActionRequest& /*request*/) {
  notAvailableYet();
}

void AppDelegate::customIcon(const ActionRequest& /*request*/) {
  notAvailableYet();
}

void AppDelegate::cutSelectedFiles(const ActionRequest& /*request*/) {
  notAvailableYet();
}

void AppDelegate::pasteSelectedFiles(const ActionRequest& /*request*/) {
  notAvailableYet();
}

void AppDelegate::hiddenSelectedFiles(const ActionRequest& /*request*/, IsHidden /*isHidden*/) {
  notAvailableYet();
}

void AppDelegate::hiddenAllFilesInPath(const ActionRequest& /*request*/, IsHidden /*isHidden*/) {
  notAvailableYet();
}

void AppDelegate::deleteDirectlySelectedFiles(const ActionRequest& /*request*/) {
  notAvailableYet();
}

void AppDelegate::pinbySnapvane(const ActionRequest& /*request*/) {
  notAvailableYet();
}

}  // namespace tavrin
