#pragma once

/// The stable keys by which a terminal's service is chosen.
namespace tavrin::terminal_service {

inline constexpr const char* terminalTab = "com.apple.terminal.tab";
inline constexpr const char* terminalWindow = "com.apple.terminal.window";
inline constexpr const char* iTerm2Tab = "com.googlecode.iterm2.tab";
inline constexpr const char* iTerm2Window = "com.googlecode.iterm2.window";

}  // namespace tavrin::terminal_service
