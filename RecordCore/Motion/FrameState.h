#pragma once

#include "RecordCore/Model/NRect.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace RecordCore {

/// Everything one output frame needs besides the pixels of the source. Positions are normalised to the
/// (cropped) source, y down; opacities and progress run from 0 to 1.
struct FrameState {
    struct Pointer {
        double x = 0;
        double y = 0;
        double opacity = 1;
        bool operator==(const Pointer&) const = default;
    };
    struct Ripple {
        double x = 0;
        double y = 0;
        double progress = 0;
        bool operator==(const Ripple&) const = default;
    };
    struct Pill {
        std::int64_t speed = 1; ///< integer part of the segment's speed
        std::string label;
        double opacity = 1;
        bool operator==(const Pill&) const = default;
    };
    struct Caption {
        int line = 0; ///< index of the caption line
        int word = 0; ///< index of the active word in that line
        double opacity = 1;
        bool operator==(const Caption&) const = default;
    };

    NRect view = NRect::full(); ///< the visible part of the (cropped) source
    std::optional<Pointer> pointer;
    double pointerScale = 1.6;
    std::vector<Ripple> ripples;
    std::optional<Pill> pill;
    double titleOpacity = 0;
    double endOpacity = 0;
    std::optional<double> clock; ///< seconds shown on the clock badge
    double cameraScale = 1;
    std::optional<Caption> caption;

    bool operator==(const FrameState&) const = default;
};

} // namespace RecordCore
