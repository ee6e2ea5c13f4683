#include "platform/linux/LinuxUserDefaultsProvider.h"

#include <atomic>
#include <map>
#include <mutex>
#include <thread>

#include "platform/linux/DefaultsDomain.h"
#include "platform/linux/Identity.h"
#include "platform/linux/LinuxDirectories.h"

namespace tavrin {

namespace {

bool isFileName(const std::string& name) {
  return !name.empty() && name != "." && name != ".." && name.size() <= 255 &&
         name.find('/') == name.npos && name.find('\0') == name.npos;
}

}  // namespace

struct LinuxUserDefaultsProvider::State {
  explicit State(Log& usedLog)
      : log(usedLog), changes(std::make_shared<DefaultsChangeSource>(usedLog)) {}

  Log& log;
  std::string configDirectory = userConfigDirectory();
  std::shared_ptr<DefaultsChangeSource> changes;
  std::shared_ptr<std::atomic<bool>> startedAfresh = std::make_shared<std::atomic<bool>>(false);
  std::shared_ptr<KnownLargeData> knownLargeData = std::make_shared<KnownLargeData>();
  std::mutex mutex;
  std::map<std::pair<std::thread::id, std::string>, std::weak_ptr<DefaultsDomain>> domains;
  std::map<std::string, std::shared_ptr<VolatileDefaults>> volatileValues;
};

LinuxUserDefaultsProvider::LinuxUserDefaultsProvider(Log& log)
    : state_(std::make_shared<State>(log)) {}

LinuxUserDefaultsProvider::~LinuxUserDefaultsProvider() = default;

std::unique_ptr<UserDefaults> LinuxUserDefaultsProvider::standardUserDefaults() {
  return openStandard();
}

std::unique_ptr<UserDefaults> LinuxUserDefaultsProvider::suite(const std::string& suiteName) {
  return openSuite(suiteName);
}

std::unique_ptr<LinuxUserDefaults> LinuxUserDefaultsProvider::openStandard() {
  return open(identity::applicationId);
}

std::unique_ptr<LinuxUserDefaults> LinuxUserDefaultsProvider::openSuite(
    const std::string& suiteName) {
  return open(suiteName);
}

std::unique_ptr<LinuxUserDefaults> LinuxUserDefaultsProvider::open(const std::string& folderName) {
  const std::lock_guard lock(state_->mutex);
  auto& known = state_->domains[{std::this_thread::get_id(), folderName}];
  auto domain = known.lock();
  if (!domain) {
    auto& volatileValues = state_->volatileValues[folderName];
    if (!volatileValues) volatileValues = std::make_shared<VolatileDefaults>();
    const std::string folder =
        isFileName(folderName) ? state_->configDirectory + "/" + folderName : std::string();
    domain = std::make_shared<DefaultsDomain>(
        folder, state_->log, [flag = state_->startedAfresh] { *flag = true; }, state_->changes,
        volatileValues, state_->knownLargeData);
    known = domain;
  }
  return std::make_unique<LinuxUserDefaults>(std::move(domain));
}

int LinuxUserDefaultsProvider::changeDescriptor() const {
  return state_->changes->descriptor();
}

void LinuxUserDefaultsProvider::processChanges() {
  const bool watchAgain = state_->changes->drain();
  std::vector<std::shared_ptr<DefaultsDomain>> domains;
  {
    const std::lock_guard lock(state_->mutex);
    std::erase_if(state_->domains, [](const auto& entry) { return entry.second.expired(); });
    for (const auto& [place, entry] : state_->domains) {
      if (place.first == std::this_thread::get_id()) domains.push_back(entry.lock());
    }
  }
  for (const auto& domain : domains) {
    if (!domain) continue;
    if (watchAgain) domain->watchAgain();
    domain->processChanges();
  }
}

bool LinuxUserDefaultsProvider::takeStartedAfresh() {
  return state_->startedAfresh->exchange(false);
}

}  // namespace tavrin
