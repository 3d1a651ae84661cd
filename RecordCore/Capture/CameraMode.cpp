#include "RecordCore/Capture/CameraMode.h"

#include <cmath>
#include <tuple>

namespace RecordCore {

namespace {

constexpr double wantedPixels = 1280.0 * 720;
constexpr double fluent = 24;

/// Smaller is better, compared from left to right.
auto rank(const CameraMode& mode) {
    const bool halting = mode.fps > 0 && mode.fps < fluent - 0.1;
    const bool exact = mode.width == 1280 && mode.height == 720;
    const double distance = std::log(static_cast<double>(mode.width) * mode.height / wantedPixels);
    // A size too small is worse than one too large: twice.
    const double away = exact ? -1 : distance < 0 ? -2 * distance : distance;
    return std::tuple(halting, halting ? -mode.fps : 0, away, mode.format == RawFormat::motionJpeg,
                      static_cast<int>(mode.format));
}

} // namespace

std::optional<std::size_t> chooseCameraMode(std::span<const CameraMode> modes) {
    std::optional<std::size_t> best;
    for (std::size_t i = 0; i < modes.size(); ++i)
        if (modes[i].width > 1 && modes[i].height > 1 && (!best || rank(modes[i]) < rank(modes[*best])))
            best = i;
    return best;
}

} // namespace RecordCore
