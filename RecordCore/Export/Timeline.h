#pragma once

#include "RecordCore/Model/TimeRange.h"
#include "RecordCore/Planning/Plan.h"

#include <optional>
#include <vector>

namespace RecordCore {

/// Which stretch of the source plays when: the edited timeline that sound and camera are read by. Plain
/// value; all times are seconds.
struct Composition {
    struct Piece {
        TimeRange source; ///< of the screen video, or of the camera video
        TimeRange output;
        double speed = 1; ///< source seconds per output second
        bool operator==(const Piece&) const = default;
    };

    std::vector<Piece> screen; ///< picture and sound, in output order
    std::vector<Piece> camera; ///< where there is camera footage; gaps elsewhere
    double duration = 0;       ///< output seconds

    /// The time of the camera video that is on show at an output time; none where there is no footage.
    std::optional<double> cameraTime(double outputSeconds) const;

    bool operator==(const Composition&) const = default;
};

namespace Timeline {

/// A camera recording beside the screen video.
struct CameraFootage {
    double duration = 0; ///< seconds
    double offset = 0;   ///< camera time = source time − offset
};

/// Lays the plan's segments, without the cuts, one after the other. Stretches of the camera below 0.02 s and
/// pieces that would last 0.001 s or less are left out; what follows keeps its place.
Composition composition(const Plan& plan, const std::optional<CameraFootage>& camera = std::nullopt);

} // namespace Timeline
} // namespace RecordCore
