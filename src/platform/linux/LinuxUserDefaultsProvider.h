#pragma once

#include <memory>
#include <string>

#include "platform/Log.h"
#include "platform/UserDefaults.h"
#include "platform/linux/LinuxUserDefaults.h"

namespace tavrin {

/// Opens the domains below $XDG_CONFIG_HOME: `app.tavrin.Tavrin/defaults.sqlite` and
/// `<suite>/defaults.sqlite`.
///
/// Any thread may open domains; the objects stay on that thread. Objects of one domain on one
/// thread share a connection and a cache. Observers are told on the thread of `processChanges`
/// only. A name of a suite that is no file name gives a domain in memory, after a log line.
class LinuxUserDefaultsProvider final : public UserDefaultsProvider {
 public:
  /// `log` outlives the provider and all that it opens.
  explicit LinuxUserDefaultsProvider(Log& log);
  ~LinuxUserDefaultsProvider() override;

  std::unique_ptr<UserDefaults> standardUserDefaults() override;
  std::unique_ptr<UserDefaults> suite(const std::string& suiteName) override;

  /// The same, with what this system alone has.
  std::unique_ptr<LinuxUserDefaults> openStandard();
  std::unique_ptr<LinuxUserDefaults> openSuite(const std::string& suiteName);

  /// A descriptor that is readable when `processChanges` has something to do; it stays the same and
  /// belongs to the provider. -1 when the system has none left.
  int changeDescriptor() const;

  /// Tells the observers of this thread's domains about changes that other processes and other
  /// objects made.
  void processChanges();

  /// Whether a domain lost its values since the last call (its database was damaged and has been
  /// replaced by an empty one), so that default values are to be set again.
  bool takeStartedAfresh();

 private:
  struct State;
  std::unique_ptr<LinuxUserDefaults> open(const std::string& folderName);

  std::shared_ptr<State> state_;
};

}  // namespace tavrin
