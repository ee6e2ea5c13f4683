#pragma once

namespace tavrin {

/// The program's object on the session bus, under the name that is its application identifier.
inline constexpr const char* applicationObjectPath = "/app/tavrin/Tavrin";
/// What the object answers to (Desktop Entry Specification, "D-Bus Activation").
inline constexpr const char* applicationInterface = "org.freedesktop.Application";

}  // namespace tavrin
