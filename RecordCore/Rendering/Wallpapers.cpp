#include "RecordCore/Rendering/Wallpapers.h"

namespace RecordCore {

// No wallpaper has been drawn yet; every name falls through to the gradient.
std::optional<RgbPlanes> Wallpapers::draw(std::string_view, int, int) {
    return std::nullopt;
}

} // namespace RecordCore
