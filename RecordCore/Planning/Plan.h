#pragma once

#include "RecordCore/Model/NRect.h"
#include "RecordCore/Model/SourceInfo.h"
#include "RecordCore/Model/SpeedSegment.h"

#include <optional>
#include <vector>

namespace RecordCore {

/// A view that the camera takes from `start` (source seconds) until the next shot's start.
struct Shot {
    double start = 0;
    NRect view = NRect::full();
    bool operator==(const Shot&) const = default;
};

/// The planner's result for one recording. Plain value; the questions asked of it many times over (once per
/// frame) are answered faster by a `TimeMap` made from it.
struct Plan {
    SourceInfo source;                  ///< facts of the (cropped) recording
    std::vector<SpeedSegment> segments; ///< in source order, contiguous from 0 to the duration
    std::vector<Shot> shots;            ///< in start order; the first starts at 0
    double baseW = 1;                   ///< width of the view at zoom 1, normalised
    double baseH = 1;                   ///< height of the view at zoom 1, normalised
    std::optional<NRect> crop;          ///< the project's crop in force

    /// Length of the film in seconds; cut segments take no time.
    double outputDuration() const;

    /// Where source time `s` lands in the film. A time inside a cut maps to the instant of the cut.
    double outputTime(double s) const;

    /// Which source time the film shows at `t`; past the end that is the last segment's end.
    double sourceTime(double t) const;

    /// The first segment that holds `s` and is not cut; without one the last segment of all.
    const SpeedSegment* segmentAt(double s) const;

    /// The first segment that ends after `s`, cut or not; without one the last. What happens in a cut (a
    /// click, a spoken word) is told by this one.
    const SpeedSegment* segmentHolding(double s) const;

    /// The view of the last shot that has begun at `s` (no motion between shots).
    NRect viewAt(double s) const;

    /// The whole of what the camera shows at zoom 1: the base size, centred.
    NRect baseView() const { return {0.5 - baseW / 2, 0.5 - baseH / 2, baseW, baseH}; }

    bool operator==(const Plan&) const = default;
};

} // namespace RecordCore
