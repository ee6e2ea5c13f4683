#pragma once

namespace tavrin {

/// The program's object on the session bus, under the name that is its application identifier.
inline constexpr const char* applicationObjectPath = "/app/tavrin/Tavrin";
/// What the object answers to (Desktop Entry Specification, "D-Bus Activation").
inline constexpr const char* applicationInterface = "org.freedesktop.Application";

/// The keys of what an "Open" or "Activate" tells besides: the desktop's tokens for windows.
namespace platform_data {

inline constexpr const char* activationToken = "activation-token";
inline constexpr const char* startupId = "desktop-startup-id";

}  // namespace platform_data

}  // namespace tavrin
