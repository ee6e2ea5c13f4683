#pragma once

/// The system's own answers among the user defaults: volatile values that the backend sets in the
/// standard domain and keeps current.
namespace tavrin::system_defaults {

/// "Dark" in the dark appearance, absent in the light one.
inline constexpr const char* appleInterfaceStyle = "AppleInterfaceStyle";

/// True when the user asks for more contrast between texts and what is behind them.
inline constexpr const char* increaseContrast = "increaseContrast";

}  // namespace tavrin::system_defaults
