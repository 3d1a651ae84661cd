#pragma once

#include "RecordCore/Model/NRect.h"
#include "RecordCore/Planning/TimeMap.h"

#include <cstddef>
#include <vector>

namespace RecordCore {

/// The camera's view at every output frame, computed once.
struct CameraPath {
    double fps = 60;
    std::vector<NRect> views;

    /// `stiffness` is the spring rate per second.
    static CameraPath of(const Plan& plan, double fps, double stiffness);
    static CameraPath of(const Plan& plan, const TimeMap& map, double fps, double stiffness);

    /// The view at an output time, interpolated between frames; the last view past the end.
    NRect view(double seconds) const;
};

/// How many entries a table of one entry per output frame has: one past the last frame. At least 1.
std::size_t frameTableSize(double outputDuration, double fps);

} // namespace RecordCore
