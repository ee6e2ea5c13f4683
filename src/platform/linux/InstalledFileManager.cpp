#include "platform/linux/InstalledFileManager.h"

#include <gio/gdesktopappinfo.h>

#include <algorithm>
#include <array>

#include "foundation/FileManagers.h"
#include "platform/linux/GLibPointers.h"

namespace tavrin {

namespace {

struct KnownFileManager {
  std::string_view identifier;
  const char* ownName;
  /// Those of the windows that people open, best first; nullptr for no other.
  std::array<const char*, 2> desktopEntries;
};

constexpr std::array<KnownFileManager, file_manager::all.size()> knownFileManagers = {{
    {file_manager::nautilus, "Nautilus", {"org.gnome.Nautilus.desktop", "nautilus.desktop"}},
    {file_manager::nemo, "Nemo", {"nemo.desktop", nullptr}},
    {file_manager::caja, "Caja", {"caja-browser.desktop", "caja.desktop"}},
    {file_manager::thunar, "Thunar", {"thunar.desktop", "org.xfce.thunar.desktop"}},
    {file_manager::dolphin, "Dolphin", {"org.kde.dolphin.desktop", nullptr}},
}};

GObjectPointer<GAppInfo> desktopEntryOf(const KnownFileManager& manager) {
  for (const char* entry : manager.desktopEntries) {
    GDesktopAppInfo* found = entry == nullptr ? nullptr : g_desktop_app_info_new(entry);
    if (found != nullptr) return GObjectPointer<GAppInfo>(G_APP_INFO(found));
  }
  return nullptr;
}

std::string iconOf(GAppInfo* entry) {
  GIcon* icon = g_app_info_get_icon(entry);
  const GLibPointer<char> text(icon == nullptr ? nullptr : g_icon_to_string(icon));
  return text == nullptr ? std::string() : text.get();
}

}  // namespace

std::optional<InstalledFileManager> installedFileManager(std::string_view identifier) {
  const auto* const manager =
      std::ranges::find(knownFileManagers, identifier, &KnownFileManager::identifier);
  if (manager == knownFileManagers.end()) return std::nullopt;
  if (const auto entry = desktopEntryOf(*manager)) {
    std::string name = g_app_info_get_name(entry.get());
    if (name.find(manager->ownName) == std::string::npos) {
      name += std::string(" (") + manager->ownName + ")";
    }
    return InstalledFileManager{std::move(name), iconOf(entry.get())};
  }
  const GLibPointer<char> program(g_find_program_in_path(std::string(identifier).c_str()));
  if (!program) return std::nullopt;
  return InstalledFileManager{manager->ownName, std::string()};
}

}  // namespace tavrin
