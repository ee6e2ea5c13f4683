#pragma once

#include <memory>

#include "platform/UserDefaults.h"

namespace tavrin {

class DefaultsDomain;

/// UserDefaults in a database of the user's configuration folder; see LinuxUserDefaultsProvider.
class LinuxUserDefaults final : public UserDefaults {
 public:
  explicit LinuxUserDefaults(std::shared_ptr<DefaultsDomain> domain);

  std::optional<PropertyList> objectForKey(const std::string& key) const override;
  void setObject(const PropertyList& value, const std::string& key) override;
  bool setObjectIfAbsent(const PropertyList& value, const std::string& key) override;
  void removeObjectForKey(const std::string& key) override;
  std::vector<std::string> keys() const override;
  bool synchronize() override;
  void setVolatileObject(const std::optional<PropertyList>& value, const std::string& key) override;
  [[nodiscard]] Observation observe(const std::string& key, Observer changed) override;

  /// Stores all values in one commit. Returns false, after a log line, when none was stored.
  bool setObjects(const PropertyList::Dictionary& values);

  /// Whether what is set outlives the process; false where no file can be written.
  bool isStored() const;

 private:
  std::shared_ptr<DefaultsDomain> domain_;
  int number_;
};

}  // namespace tavrin
