#pragma once

#include "RecordCore/Capture/ScreenBackend.h"

#include <cstdint>
#include <string>
#include <vector>

namespace RecordCore {

/// The windows a user may choose from: on screen, of another process than `ownProcess`, normal ones (layer
/// 0), at least 240 × 160, of an application with a name. Sorted by application, then title; equal ones keep
/// their order.
std::vector<WindowInfo> recordableWindows(std::vector<WindowInfo> windows, std::int64_t ownProcess);

/// The application's name ("Window" when there is none) and the title where it says more:
/// "Terminal · build.log". A title of 47 or more characters is cut to 45 and "…".
std::string windowName(const WindowInfo& window);

} // namespace RecordCore
