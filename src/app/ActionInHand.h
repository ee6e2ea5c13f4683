#pragma once

#include <string>
#include <utility>

namespace tavrin {

/// Names the action that log lines speak of, until it goes out of scope.
class ActionInHand {
 public:
  ActionInHand(std::string& slot, std::string name)
      : slot_(slot), outer_(std::exchange(slot, std::move(name))) {}
  ~ActionInHand() { slot_ = std::move(outer_); }
  ActionInHand(const ActionInHand&) = delete;
  ActionInHand& operator=(const ActionInHand&) = delete;

 private:
  std::string& slot_;
  std::string outer_;
};

}  // namespace tavrin
