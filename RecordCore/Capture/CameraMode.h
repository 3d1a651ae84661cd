#pragma once

#include "RecordCore/Media/PictureDecoder.h"

#include <cstddef>
#include <optional>
#include <span>

namespace RecordCore {

/// One way in which a camera offers its pictures.
struct CameraMode {
    RawFormat format = RawFormat::yuyv;
    int width = 0;
    int height = 0;
    double fps = 0; ///< the fastest of this format and size; 0: not told
    bool operator==(const CameraMode&) const = default;
};

/// The mode to record a camera in, by its place in the list: 1280 × 720 where it is offered fluently (from
/// 24 frames a second on), else the fluent size nearest to it, preferring larger; what is not fluent comes
/// last. Of one size, no compression before Motion JPEG. None for an empty list.
std::optional<std::size_t> chooseCameraMode(std::span<const CameraMode> modes);

} // namespace RecordCore
