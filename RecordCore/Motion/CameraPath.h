#pragma once

#include "RecordCore/Model/NRect.h"
#include "RecordCore/Planning/TimeMap.h"

#include <cstddef>
#include <cstdint>
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

/// The camera's path as it is drawn: a spring comes to rest over a second of motion that no eye can see, in
/// which every frame would be a new picture. Each frame takes the view of a frame near it that differs by no
/// more than a tolerance, so that pictures stand as long as they can; what the path rests in is kept exactly.
/// Computed once from the path; the view of a frame does not depend on which frames are asked for.
class SettledPath {
public:
    /// Canvas pixels, at scale 1, by which no point of the picture may be displaced.
    static constexpr double tolerance = 1.0 / 16;

    SettledPath() = default;
    /// `width` and `height`: canvas pixels that a view fills.
    SettledPath(const CameraPath& path, double width, double height);

    /// The view at an output time on `path`, the one this was made from. On a frame's own time that frame's;
    /// interpolated between frames.
    NRect view(const CameraPath& path, double seconds) const;

private:
    std::vector<std::uint32_t> anchors; ///< per frame: the frame whose view it takes
};

/// How many entries a table of one entry per output frame has: one past the last frame. At least 1.
std::size_t frameTableSize(double outputDuration, double fps);

} // namespace RecordCore
