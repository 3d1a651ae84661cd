#pragma once

#include "RecordCore/Model/InputLog.h"
#include "RecordCore/Model/Project.h"
#include "RecordCore/Motion/FrameState.h"
#include "RecordCore/Planning/TimeMap.h"

#include <optional>
#include <vector>

namespace RecordCore {

/// The drawn pointer at every output frame, computed once, and the clicks in output time. Positions are
/// normalised to the (cropped) source.
class PointerTrack {
public:
    /// `log` is already cropped. None when there is nothing to draw: no log, a pointer that is part of the
    /// picture (or may be), or fewer than two pointer samples.
    static std::optional<PointerTrack> of(const std::optional<InputLog>& log, const TimeMap& map,
                                          const Project& project, double fps);

    /// The pointer at the frame nearest to an output time.
    FrameState::Pointer state(double seconds) const;

    /// The ripples of the clicks of the last 0.45 s, in click order.
    std::vector<FrameState::Ripple> ripples(double seconds) const;

private:
    struct Click {
        double time; ///< output seconds
        double x;
        double y;
    };

    PointerTrack() = default;

    double fps = 60;
    std::vector<FrameState::Pointer> states;
    std::vector<Click> clicks; ///< in log order
    bool clicksInOrder = true;
};

} // namespace RecordCore
