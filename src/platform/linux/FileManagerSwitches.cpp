#include "platform/linux/FileManagerSwitches.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <string>
#include <vector>

#include "foundation/FileManagers.h"
#include "foundation/PathString.h"
#include "platform/linux/GLibPointers.h"
#include "platform/linux/LinuxDirectories.h"
#include "platform/linux/MenuModuleNames.h"

namespace tavrin {

namespace {

constexpr const char* disabledKey = "disabled-extensions";

/// The settings in which a file manager keeps a list of what it is not to load.
struct DisabledList {
  std::string_view fileManager;
  const char* schema;
  /// What stands there for the menu.
  const char* entry;
};

constexpr std::array<DisabledList, 2> disabledLists = {{
    {file_manager::nemo, "org.nemo.plugins", menu_module::nemoType},
    {file_manager::caja, "org.mate.caja.extensions", menu_module::name},
}};

/// Null where the schema is not installed, with which GLib would end the program.
GObjectPointer<GSettings> settingsOf(const DisabledList& list) {
  GSettingsSchemaSource* source = g_settings_schema_source_get_default();
  GSettingsSchema* schema =
      source == nullptr ? nullptr : g_settings_schema_source_lookup(source, list.schema, TRUE);
  if (schema == nullptr) return nullptr;
  GSettings* settings = g_settings_schema_has_key(schema, disabledKey) != FALSE
                            ? g_settings_new_full(schema, nullptr, nullptr)
                            : nullptr;
  g_settings_schema_unref(schema);
  return GObjectPointer<GSettings>(settings);
}

const DisabledList* disabledListOf(std::string_view fileManager) {
  const auto* const list =
      std::ranges::find(disabledLists, fileManager, &DisabledList::fileManager);
  return list == disabledLists.end() ? nullptr : list;
}

bool isInList(const DisabledList& list) {
  const auto settings = settingsOf(list);
  if (!settings) return false;
  const GLibPointer<char*> entries(g_settings_get_strv(settings.get(), disabledKey));
  return g_strv_contains(entries.get(), list.entry) != FALSE;
}

Status removeFromList(const DisabledList& list) {
  const auto settings = settingsOf(list);
  if (!settings) return success();
  const GLibPointer<char*> entries(g_settings_get_strv(settings.get(), disabledKey));
  std::vector<const char*> kept;
  for (char** entry = entries.get(); *entry != nullptr; ++entry) {
    if (std::string_view(*entry) != list.entry) kept.push_back(*entry);
  }
  kept.push_back(nullptr);
  if (g_settings_set_strv(settings.get(), disabledKey, kept.data()) == FALSE) {
    return SystemError{"change the setting", std::string(list.schema) + " " + disabledKey,
                       std::make_error_code(std::errc::operation_not_permitted)};
  }
  // The change is on its way to another process, and this one may end soon.
  g_settings_sync();
  return success();
}

// Dolphin

constexpr const char* dolphinGroup = "Show";

/// With links resolved: a file that is written anew must not take the place of one.
std::string dolphinFile() {
  const std::string path = appendingPathComponent(userConfigDirectory(), "kservicemenurc");
  std::error_code missing;
  const auto resolved = std::filesystem::canonical(path, missing);
  return missing ? path : resolved.string();
}

/// Null when the file is missing or damaged.
GLibPointer<GKeyFile> dolphinSettings() {
  GLibPointer<GKeyFile> file(g_key_file_new());
  const auto flags =
      static_cast<GKeyFileFlags>(G_KEY_FILE_KEEP_COMMENTS | G_KEY_FILE_KEEP_TRANSLATIONS);
  if (g_key_file_load_from_file(file.get(), dolphinFile().c_str(), flags, nullptr) == FALSE) {
    return nullptr;
  }
  return file;
}

bool isOffInDolphin() {
  const auto file = dolphinSettings();
  if (!file) return false;
  const GLibPointer<char> value(
      g_key_file_get_value(file.get(), dolphinGroup, menu_module::name, nullptr));
  if (!value) return false;
  const std::string lower = GLibPointer<char>(g_ascii_strdown(value.get(), -1)).get();
  return lower == "false" || lower == "no" || lower == "off" || lower == "0";
}

Status switchOnInDolphin() {
  const auto file = dolphinSettings();
  if (!file) return success();
  g_key_file_set_boolean(file.get(), dolphinGroup, menu_module::name, TRUE);
  GLibError error;
  const std::string path = dolphinFile();
  if (g_key_file_save_to_file(file.get(), path.c_str(), error.slot()) != FALSE) return success();
  return SystemError{"write (" + error.message() + ")", path,
                     std::make_error_code(std::errc::io_error)};
}

}  // namespace

bool isSwitchedOffInFileManager(std::string_view fileManager) {
  if (fileManager == file_manager::dolphin) return isOffInDolphin();
  const DisabledList* list = disabledListOf(fileManager);
  return list != nullptr && isInList(*list);
}

Status switchOnInFileManager(std::string_view fileManager) {
  if (fileManager == file_manager::dolphin) return switchOnInDolphin();
  const DisabledList* list = disabledListOf(fileManager);
  return list == nullptr ? success() : removeFromList(*list);
}

}  // namespace tavrin
