#pragma once

#include <array>

namespace tavrin {

/// The file managers that have the menu, by the names of their programs.
namespace file_manager {

inline constexpr const char* nautilus = "nautilus";
inline constexpr const char* nemo = "nemo";
inline constexpr const char* caja = "caja";
inline constexpr const char* thunar = "thunar";
inline constexpr const char* dolphin = "dolphin";

inline constexpr std::array<const char*, 5> all = {nautilus, nemo, caja, thunar, dolphin};

/// The setting of the shared suite that holds those where the user has switched the menu off, an
/// array of the names above.
inline constexpr const char* disabledSetting = "disabledFileManagers";

}  // namespace file_manager

}  // namespace tavrin
