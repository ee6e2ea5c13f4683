#include "app/ActionInHand.h"

#include <utility>

namespace tavrin {

ActionInHand::ActionInHand(Log& log, ActionInHand*& slot, std::string name)
    : log_(log), slot_(slot), outer_(std::exchange(slot, this)), name_(std::move(name)) {}

ActionInHand::~ActionInHand() {
  slot_ = outer_;
  if (failures_ > maximumLines) {
    log_.write(name_ + ": and " + std::to_string(failures_ - maximumLines) + " more failures");
  }
}

void ActionInHand::logFailure(const std::string& reason) {
  if (++failures_ <= maximumLines) log_.write(name_ + ": " + reason);
}

}  // namespace tavrin
