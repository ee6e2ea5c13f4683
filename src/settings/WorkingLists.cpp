#include "settings/WorkingLists.h"

namespace tavrin {

WorkingLists::WorkingLists(const UserDefaults& standard) {
  for (const RuleListKeys& keys : ruleLists) {
    list(keys.list) = standard.arrayForKey(keys.listKey);
  }
}

}  // namespace tavrin
