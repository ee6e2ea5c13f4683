#include "settings/Seeding.h"

#include <algorithm>
#include <string>
#include <vector>

namespace tavrin {

namespace {

class SeededStore {
 public:
  explicit SeededStore(UserDefaults& store) : store_(store), presentKeys_(store.keys()) {}

  void seed(const std::string& key, const PropertyList& value) {
    if (std::binary_search(presentKeys_.begin(), presentKeys_.end(), key)) return;
    if (store_.setObjectIfAbsent(value, key)) hasNewValues_ = true;
  }

  bool hasNewValues() const { return hasNewValues_; }

 private:
  UserDefaults& store_;
  const std::vector<std::string> presentKeys_;
  bool hasNewValues_ = false;
};

}  // namespace

void seedSettings(const DefaultSettings& defaults, UserDefaults& standard,
                  UserDefaults& sharedSuite) {
  SeededStore seededSuite(sharedSuite);
  SeededStore seededStandard(standard);
  for (const auto& [key, value] : defaults.dictionary()) {
    seededSuite.seed(key, value);
    seededStandard.seed(key, value);
  }
  // Every start passes here, and waiting for the disk is the dearest thing it could do.
  if (seededSuite.hasNewValues()) sharedSuite.synchronize();
}

}  // namespace tavrin
