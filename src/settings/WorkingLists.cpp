#include "settings/WorkingLists.h"

namespace tavrin {

PropertyList::Array& WorkingLists::list(RuleList list) {
  auto& copy = lists_.at(static_cast<std::size_t>(list));
  if (!copy) copy = standard_.arrayForKey(keysOfRuleList(list).listKey);
  return *copy;
}

void WorkingLists::release(RuleList list) {
  lists_.at(static_cast<std::size_t>(list)).reset();
}

void WorkingLists::release() {
  lists_ = {};
}

}  // namespace tavrin
