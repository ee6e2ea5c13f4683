#include <unistd.h>

#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "app/AppDelegate.h"
#include "app/CommandLine.h"
#include "app/PreferencesDelegate.h"
#include "platform/linux/AcceptedRequests.h"
#include "platform/linux/ApplicationIcon.h"
#include "platform/linux/BusIntake.h"
#include "platform/linux/DestroyedWindow.h"
#include "platform/linux/DisplayCheck.h"
#include "platform/linux/Identity.h"
#include "platform/linux/LinuxLog.h"
#include "platform/linux/LinuxPlatform.h"
#include "platform/linux/ParentPipe.h"
#include "platform/linux/TerminationSignals.h"
#include "platform/linux/TextTranslator.h"
#include "platform/linux/UserFolders.h"
#include "settings/DefaultSettings.h"
#include "settings/Seeding.h"
#include "settings/window/PreferencesProcess.h"
#include "settings/window/QtPreferencesWindow.h"

namespace tavrin {

namespace {

constexpr int usageError = 2;

std::string environmentText(const char* name) {
  const char* value = std::getenv(name);  // NOLINT(concurrency-mt-unsafe): no thread runs yet
  return value == nullptr ? std::string() : value;
}

CommandLine readCommandLine(int argumentCount, char** arguments) {
  const std::vector<std::string_view> words(arguments + 1, arguments + argumentCount);
  std::error_code gone;
  const std::string workingFolder = std::filesystem::current_path(gone).string();
  return parseCommandLine(words, workingFolder.empty() ? "/" : workingFolder);
}

/// The exit status of a start that runs no host; nothing when it runs one.
std::optional<int> answerCommandLine(const CommandLine& commandLine, Log& log) {
  switch (commandLine.mode) {
    case CommandLine::Mode::Help:
      std::fputs(std::string(commandLineHelp()).c_str(), stdout);
      return EXIT_SUCCESS;
    case CommandLine::Mode::Version:
      std::printf("%s %s\n", identity::displayName, identity::version);
      return EXIT_SUCCESS;
    case CommandLine::Mode::Invalid:
      log.write(commandLine.complaint + "; see tavrin --help");
      return usageError;
    case CommandLine::Mode::Run:
    case CommandLine::Mode::Service:
    case CommandLine::Mode::PreferencesWindow:
      break;
  }
  return std::nullopt;
}

BusIntake::Launch launchOf(const CommandLine& commandLine) {
  BusIntake::Launch launch;
  launch.files = commandLine.files;
  launch.activationToken = environmentText("XDG_ACTIVATION_TOKEN");
  launch.startupId = environmentText("DESKTOP_STARTUP_ID");
  launch.isService = commandLine.mode == CommandLine::Mode::Service;
  return launch;
}

void seedStores(Platform& platform, const DefaultSettings& defaultSettings) {
  const auto standard = platform.userDefaults.standardUserDefaults();
  const auto sharedSuite = platform.userDefaults.suite(platform.bundle.groupIdentifier());
  seedSettings(defaultSettings, *standard, *sharedSuite);
}

DefaultSettings loadDefaultSettings(Platform& platform) {
  return DefaultSettings::loadedFromBundle(platform.bundle, platform.propertyLists, platform.log)
      .withFoldersAt(placesOfUserFolders());
}

void nameApplication() {
  QCoreApplication::setApplicationName(QString::fromUtf8(identity::displayName));
  QCoreApplication::setApplicationVersion(QString::fromUtf8(identity::version));
  QCoreApplication::setOrganizationName(QString::fromUtf8(identity::applicationId));
  QGuiApplication::setDesktopFileName(QString::fromUtf8(identity::applicationId));
}

int runHost(char* programName, AcceptedRequests& accepted, BusIntake& intake,
            TerminationSignals& signalsToEnd, Log& log) {
  nameApplication();
  int argumentCount = 1;
  char* arguments[] = {programName, nullptr};
  const QApplication application(argumentCount, arguments);
  // No window's end is the host's.
  QCoreApplication::setQuitLockEnabled(false);
  translateWindows();

  LinuxPlatform linuxPlatform(accepted, intake, signalsToEnd, log);
  Platform& platform = linuxPlatform.services();
  const DefaultSettings defaultSettings = loadDefaultSettings(platform);
  const auto seed = [&] { seedStores(platform, defaultSettings); };
  seed();
  linuxPlatform.setSettingsLost(seed);
  linuxPlatform.clearLeftoversSoon();

  AppDelegate delegate(platform, defaultSettings, [&platform](UserDefaults&, SettingsController&) {
    return std::make_unique<PreferencesProcess>(platform);
  });
  platform.application.setDelegate(&delegate);
  return platform.application.run();
}

/// Shows the preferences window for the host, as it asks by standard input.
int runPreferencesWindow(char* programName, Log& log) {
  AcceptedRequests accepted;
  BusIntake intake(accepted, log);
  intake.connectOnly();
  TerminationSignals signalsToEnd;
  nameApplication();
  int argumentCount = 1;
  char* arguments[] = {programName, nullptr};
  const QApplication application(argumentCount, arguments);
  translateWindows();
  ensureApplicationIcon();

  LinuxPlatform linuxPlatform(accepted, intake, signalsToEnd, log);
  Platform& platform = linuxPlatform.services();
  const DefaultSettings defaultSettings = loadDefaultSettings(platform);
  AppDelegate host(platform, defaultSettings,
                   [&platform](UserDefaults& standardUserDefaults, SettingsController& settings) {
                     return std::make_unique<QtPreferencesWindow>(platform, standardUserDefaults,
                                                                  settings);
                   });
  PreferencesDelegate delegate(host, [] {
    std::fputs(PreferencesProcess::showLine, stdout);
    std::fflush(stdout);
  });
  const ParentPipe wishes(accepted);
  // The host starts another process for the next wish.
  const DestroyedWindow destroyedWindow([&platform] { platform.application.terminate(); });
  platform.application.setDelegate(&delegate);
  return platform.application.run();
}

int start(int argumentCount, char** arguments) {
  const bool hasParent = ParentPipe::isThere();
  LinuxLog log;
  const CommandLine commandLine = readCommandLine(argumentCount, arguments);
  if (const auto status = answerCommandLine(commandLine, log)) return *status;
  const bool isOfHost = commandLine.mode == CommandLine::Mode::PreferencesWindow;
  if (isOfHost && !hasParent) {
    log.write("the preferences window is for the host alone, which asks for it by a pipe");
    return usageError;
  }

  // The folder of the start must not be kept from being unmounted.
  if (::chdir("/") != 0) log.write("cannot leave the folder of the start");
  // The notices of the buses come by GLib's loop, which Qt then has to run.
  ::unsetenv("QT_NO_GLIB");  // NOLINT(concurrency-mt-unsafe): no thread runs yet

  if (isOfHost) return runPreferencesWindow(arguments[0], log);
  AcceptedRequests accepted;
  BusIntake intake(accepted, log);
  const BusIntake::Outcome outcome = intake.start(launchOf(commandLine));
  if (outcome == BusIntake::Outcome::HandedOver) return EXIT_SUCCESS;
  if (outcome == BusIntake::Outcome::Refused) return EXIT_FAILURE;
  if (const auto problem = missingDisplay()) {
    log.write(*problem);
    return EXIT_FAILURE;
  }
  // Before the first request is accepted: from then on a signal must not end the process at once.
  TerminationSignals signalsToEnd;
  intake.serve();
  return runHost(arguments[0], accepted, intake, signalsToEnd, log);
}

}  // namespace

}  // namespace tavrin

int main(int argumentCount, char** arguments) {
  return tavrin::start(argumentCount, arguments);
}
