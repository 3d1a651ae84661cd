#pragma once

#include "RecordCore/Rendering/RgbPlanes.h"

#include <optional>
#include <string_view>

namespace RecordCore {

/// The wallpapers that are drawn by the program, by name. Pure; callable from any thread.
namespace Wallpapers {

/// The wallpaper of that name at that size; none when there is no such name.
std::optional<RgbPlanes> draw(std::string_view name, int width, int height);

} // namespace Wallpapers

} // namespace RecordCore
