#include "app/AppDelegate.h"

namespace tavrin {

void AppDelegate::notAvailableYet() {
  platform_.log.write("not available yet: " + actionInHand_->name());
}

}  // namespace tavrin
