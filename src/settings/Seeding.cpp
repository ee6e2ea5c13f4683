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
    store_.setObjectIfAbsent(value, key);
  }

 private:
  UserDefaults& store_;
  const std::vector<std::string> presentKeys_;
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
  sharedSuite.synchronize();
}

}  // namespace tavrin
