#pragma once

#include "RecordCore/Model/InputLog.h"
#include "RecordCore/Model/Project.h"
#include "RecordCore/Motion/CameraPath.h"
#include "RecordCore/Motion/FrameState.h"
#include "RecordCore/Motion/PointerTrack.h"
#include "RecordCore/Planning/CaptionLayout.h"
#include "RecordCore/Planning/TimeMap.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace RecordCore {

/// What the film looks like at any output time. Built once for a plan and a project; immutable and usable
/// from several threads at once.
class Scene {
public:
    /// `log` is the input log as recorded; the scene crops it. `fps` is the rate of the per-frame tables.
    Scene(const Plan& plan, const Project& project, const std::optional<InputLog>& log, double fps);

    FrameState state(double seconds) const { return state(seconds, camera.view(seconds)); }

    /// The same as it is drawn, by film, still and preview alike: the camera stands where it would move by
    /// less than can be seen.
    FrameState drawn(double seconds) const { return state(seconds, drawnView(seconds)); }
    /// Its view alone.
    NRect drawnView(double seconds) const { return settled.view(camera, seconds); }

    /// Whether the pointer looks the same at both times (ripples count for nothing).
    bool pointerRests(double from, double to) const;

    const TimeMap& times() const { return map; }
    double outputDuration() const { return map.outputDuration(); }

    /// Number of frames of the film: every i with i / fps inside it (forgiving a millionth of a frame).
    std::int64_t frameCount() const;

    /// The text of a time on the clock badge and in the pill: `RecordCore::clock`.
    static std::string clock(double seconds);

private:
    FrameState state(double seconds, const NRect& view) const;
    std::optional<FrameState::Pill> pill(double source) const;
    std::optional<FrameState::Caption> caption(double seconds) const;

    TimeMap map;
    double fps;
    double fullWidth; ///< width of the view at zoom 1
    CameraPath camera;
    SettledPath settled;
    std::optional<PointerTrack> pointer;
    std::vector<CaptionLayout::Line> captions;
    double cursorSize;
    double clickBounce;
    bool cameraMakeRoom;
    bool showTitle;
    bool showEnd;
    std::optional<double> clockOrigin; ///< source seconds; present when the clock is shown
};

} // namespace RecordCore
