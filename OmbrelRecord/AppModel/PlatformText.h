#pragma once

#include <string_view>

namespace OmbrelRecord {

/// The words of messages that name the platform; every other word of a message is the same everywhere.
namespace PlatformText {

/// The operating system, as in the log's launch line.
inline constexpr std::string_view system = "Linux";
/// What the user sits at, as in "on this …".
inline constexpr std::string_view computer = "computer";
/// Where the user allows things, as in "Turn it on in …".
inline constexpr std::string_view microphoneSettings = "Settings → Privacy → Microphone";
inline constexpr std::string_view cameraSettings = "Settings → Privacy → Camera";
inline constexpr std::string_view speechSettings = "your desktop's privacy settings";
/// What to do where the screen cannot be recorded and no page of settings can be opened for it.
inline constexpr std::string_view noScreenAccess = "Ombrel Record can't see this screen. Log in to a desktop "
                                                   "session, allow screen recording when it asks, and "
                                                   "try again.";
/// The hot key, as shown.
inline constexpr std::string_view hotKey = "Super+Alt+R";
/// Another program holds the hot key.
inline constexpr std::string_view hotKeyTaken =
    "Super+Alt+R belongs to another program, so it doesn't start a recording here. Use the Record button.";
/// The desktop offers no way to it.
inline constexpr std::string_view hotKeyOnWayland =
    "Super+Alt+R doesn't work in a Wayland session yet. Use the Record button.";

} // namespace PlatformText
} // namespace OmbrelRecord
