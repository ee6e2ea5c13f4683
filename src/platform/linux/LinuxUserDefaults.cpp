#include "platform/linux/LinuxUserDefaults.h"

#include "platform/linux/DefaultsDomain.h"

namespace tavrin {

LinuxUserDefaults::LinuxUserDefaults(std::shared_ptr<DefaultsDomain> domain)
    : domain_(std::move(domain)), number_(domain_->addObject()) {}

std::optional<PropertyList> LinuxUserDefaults::objectForKey(const std::string& key) const {
  return domain_->value(key);
}

void LinuxUserDefaults::setObject(const PropertyList& value, const std::string& key) {
  // A failure is in the log; the old value then stands and nobody is told.
  if (domain_->database().set(value, key)) domain_->tellOwnObservers(number_, key);
}

bool LinuxUserDefaults::setObjects(const PropertyList::Dictionary& values) {
  if (!domain_->database().set(values)) return false;
  for (const auto& entry : values) domain_->tellOwnObservers(number_, entry.first);
  return true;
}

bool LinuxUserDefaults::setObjectIfAbsent(const PropertyList& value, const std::string& key) {
  if (!domain_->database().setIfAbsent(value, key)) return false;
  domain_->tellOwnObservers(number_, key);
  return true;
}

void LinuxUserDefaults::removeObjectForKey(const std::string& key) {
  if (domain_->database().remove(key)) domain_->tellOwnObservers(number_, key);
}

std::vector<std::string> LinuxUserDefaults::keys() const {
  return domain_->database().keys();
}

bool LinuxUserDefaults::synchronize() {
  return domain_->database().synchronize();
}

void LinuxUserDefaults::setVolatileObject(const std::optional<PropertyList>& value,
                                          const std::string& key) {
  domain_->volatileValues().set(value, key);
  domain_->tellOwnObservers(number_, key);
}

Observation LinuxUserDefaults::observe(const std::string& key, Observer changed) {
  return domain_->observe(number_, key, std::move(changed));
}

bool LinuxUserDefaults::isStored() const {
  return domain_->database().isStored();
}

}  // namespace tavrin
