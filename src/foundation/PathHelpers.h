#pragma once

#include <functional>
#include <string>
#include <string_view>

/// The naming and home rules that several file actions share. They hold no state; what they need to
/// know of the system is passed in.
namespace tavrin {

/// The account that the process runs for, as the system's account database has it.
struct Account {
  std::string loginName;
  /// Absolute path of the account's own home folder, whatever the environment says.
  std::string homeDirectory;
};

/// Answers whether an item, be it a dangling link, stands at a path.
using ItemExists = std::function<bool(const std::string& path)>;

/// A free path for an item that is wanted at `path` (absolute): `path` itself when nothing stands
/// there, else the first free of "name 2.ext", "name 3.ext", ... The number goes before the last
/// extension; folders are numbered like files. It reserves nothing.
std::string uniquePathForPath(const std::string& path, const ItemExists& itemExists);

/// The user's home folder, never that of the environment or of a container.
std::string realHomePath(const Account& account);

/// `path` with a leading "~" replaced by `homePath`; the rest stands unchanged.
std::string expandingHome(std::string_view path, std::string_view homePath);

/// `path` with a leading `homePath` (whole components only) replaced by "~".
std::string abbreviatingHome(std::string_view path, std::string_view homePath);

/// True when `countApplications` finds at least one application.
bool isApplicationInstalled(
    const std::string& bundleIdentifier,
    const std::function<std::size_t(const std::string& bundleIdentifier)>& countApplications);

/// What stands in the place of a folder's path where there is no folder yet.
extern const std::string_view undefinedFolder;

/// The name that a user knows a folder by: the localised name of the six well-known folders of the
/// home ("~/Downloads", "~/Pictures", "~/Music", "~/Movies", "~/Desktop", "~/Documents") and of the
/// `undefinedFolder`, otherwise the last component. The comparison is exact: a trailing separator
/// makes another path.
std::string displayNameOfFolder(const std::string& path, std::string_view homePath,
                                const std::function<std::string(const std::string&)>& localized);

}  // namespace tavrin
