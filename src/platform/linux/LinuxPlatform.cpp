#include "platform/linux/LinuxPlatform.h"

#include <gio/gio.h>

#include <QSocketNotifier>
#include <utility>

#include "foundation/PathString.h"
#include "platform/SystemDefaults.h"
#include "platform/linux/AcceptedPropertyLists.h"
#include "platform/linux/JobView.h"
#include "platform/linux/LauncherProgress.h"
#include "platform/linux/LinuxAlert.h"
#include "platform/linux/LinuxAppearance.h"
#include "platform/linux/LinuxApplication.h"
#include "platform/linux/LinuxBundle.h"
#include "platform/linux/LinuxDistributedNotificationCenter.h"
#include "platform/linux/LinuxExtensionController.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxImage.h"
#include "platform/linux/LinuxLaunchServices.h"
#include "platform/linux/LinuxLoginItems.h"
#include "platform/linux/LinuxMainLoop.h"
#include "platform/linux/LinuxPasteboard.h"
#include "platform/linux/LinuxSecurityScope.h"
#include "platform/linux/LinuxServices.h"
#include "platform/linux/LinuxShell.h"
#include "platform/linux/LinuxSound.h"
#include "platform/linux/LinuxStatusItem.h"
#include "platform/linux/LinuxSystemCapabilities.h"
#include "platform/linux/LinuxUniformTypes.h"
#include "platform/linux/LinuxUserDefaultsProvider.h"
#include "platform/linux/LinuxWorkspace.h"
#include "platform/linux/LongWork.h"
#include "platform/linux/MenuModules.h"
#include "platform/linux/panel/LinuxOpenPanel.h"

namespace tavrin {

namespace {

constexpr double secondsOfTheStart = 1;

}  // namespace

struct LinuxPlatform::Services {
  Services(AcceptedRequests& accepted, BusIntake& intake, TerminationSignals& signalsToEnd,
           Log& systemLog);

  void appearanceChanged(const Appearance& now);
  void settingsChanged();
  void prepareForEnd(GDBusConnection* bus);

  Log& log;
  LinuxBundle bundle;
  LinuxSystemCapabilities capabilities;
  LinuxUserDefaultsProvider userDefaults;
  AcceptedPropertyLists propertyLists;
  LinuxSecurityScope securityScope;
  LinuxStatusBar statusBar;
  LauncherProgress launcherProgress;
  JobView jobView;
  LongWork longWork;
  LinuxFileManager fileManager;
  LinuxPanelProvider panels;
  LinuxAlertProvider alerts;
  LinuxSoundProvider sounds;
  ApplicationTable applications;
  ItemIcons itemIcons;
  LinuxWorkspace workspace;
  LinuxLaunchServices launchServices;
  LinuxLoginItems loginItems;
  LinuxDistributedNotificationCenter distributedNotifications;
  LinuxPasteboardProvider pasteboards;
  LinuxUniformTypes uniformTypes;
  LinuxServices terminalServices;
  LinuxShell shell;
  LinuxImageProvider images;
  LinuxExtensionController extensionController;
  LinuxApplication application;
  std::unique_ptr<UserDefaults> standardUserDefaults;
  LinuxAppearance appearance;
  std::function<void()> settingsLost;
  QSocketNotifier settingsNotifier;
  // Gone before the others: its end waits for background work, which may use any of them.
  LinuxMainLoop mainLoop;
  Platform platform;
};

LinuxPlatform::Services::Services(AcceptedRequests& accepted, BusIntake& intake,
                                  TerminationSignals& signalsToEnd, Log& systemLog)
    : log(systemLog),
      userDefaults(log),
      propertyLists(accepted),
      securityScope(LinuxSecurityScope::standardLocations(bundle.resourcePath()), log),
      statusBar(appendingPathComponent(bundle.resourcePath(), "icons")),
      launcherProgress(intake.connection()),
      jobView(intake.connection()),
      longWork(
          {[this] { return application.isTerminating(); }, [this] { application.terminateNow(); }},
          {&statusBar, &launcherProgress, &jobView}, log, {}),
      fileManager(securityScope, log, &longWork),
      panels([this](const auto& picked) { securityScope.grantByPicking(picked); },
             [this](const auto& place) { securityScope.grantPlaceByPicking(place); }),
      sounds(log, bundle.builtInPlugInsPath()),
      applications(bundle, propertyLists, log),
      itemIcons(securityScope.startedScopes(), fileManager.partialItems(), fileManager,
                bundle.groupIdentifier(), log),
      workspace(intake.connection(), applications, &itemIcons, log),
      launchServices(applications),
      loginItems(log),
      distributedNotifications(intake.connection(), log),
      terminalServices(bundle, propertyLists, log),
      shell(securityScope.startedScopes(), log, bundle.builtInPlugInsPath()),
      images(fileManager, log),
      extensionController(userDefaults, bundle.groupIdentifier(), libraryFolders(), log),
      application(accepted, intake, signalsToEnd, log),
      standardUserDefaults(userDefaults.standardUserDefaults()),
      appearance([this](const Appearance& now) { appearanceChanged(now); }),
      settingsNotifier(userDefaults.changeDescriptor(), QSocketNotifier::Read),
      mainLoop(log),
      platform{log,
               mainLoop,
               application,
               bundle,
               capabilities,
               userDefaults,
               propertyLists,
               fileManager,
               securityScope,
               panels,
               alerts,
               sounds,
               statusBar,
               workspace,
               launchServices,
               loginItems,
               distributedNotifications,
               pasteboards,
               uniformTypes,
               terminalServices,
               shell,
               images,
               extensionController} {
  QObject::connect(&settingsNotifier, &QSocketNotifier::activated, [this] { settingsChanged(); });
  application.setBeforeEnd([this, bus = intake.connection()] { prepareForEnd(bus); });
}

/// For an end in the middle of a command.
void LinuxPlatform::Services::prepareForEnd(GDBusConnection* bus) {
  fileManager.writeWaitingChanges();
  longWork.hide();
  if (bus != nullptr) g_dbus_connection_flush_sync(bus, nullptr, nullptr);
}

void LinuxPlatform::Services::appearanceChanged(const Appearance& now) {
  const auto style = now.isDark ? std::optional<PropertyList>("Dark") : std::nullopt;
  standardUserDefaults->setVolatileObject(now.hasMoreContrast, system_defaults::increaseContrast);
  standardUserDefaults->setVolatileObject(style, system_defaults::appleInterfaceStyle);
  distributedNotifications.deliverLocally("AppleInterfaceThemeChangedNotification");
}

void LinuxPlatform::Services::settingsChanged() {
  userDefaults.processChanges();
  if (userDefaults.takeStartedAfresh() && settingsLost) settingsLost();
}

LinuxPlatform::LinuxPlatform(AcceptedRequests& accepted, BusIntake& intake,
                             TerminationSignals& signalsToEnd, Log& log)
    : services_(std::make_unique<Services>(accepted, intake, signalsToEnd, log)) {}

LinuxPlatform::~LinuxPlatform() {
  // The end waits for the threads in the background.
  services_->fileManager.stopClearing();
}

void LinuxPlatform::clearLeftoversSoon() {
  Services& services = *services_;
  services.mainLoop.performAfterDelay(secondsOfTheStart, [&services] {
    services.mainLoop.runInBackground([&services] { services.fileManager.clearLeftovers(); });
  });
}

Platform& LinuxPlatform::services() {
  return services_->platform;
}

void LinuxPlatform::setSettingsLost(std::function<void()> reset) {
  services_->settingsLost = std::move(reset);
}

}  // namespace tavrin
