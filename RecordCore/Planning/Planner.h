#pragma once

#include "RecordCore/Model/ActivitySample.h"
#include "RecordCore/Model/InputLog.h"
#include "RecordCore/Model/Project.h"
#include "RecordCore/Planning/Plan.h"

#include <optional>
#include <vector>

namespace RecordCore {

/// What the automatic planner may do.
struct PlanOptions {
    double viewportAspect = 16.0 / 9.0; ///< width over height of the film's picture area
    bool skipWaiting = true;            ///< speed up idle and waiting stretches
    bool autoZoom = true;               ///< allow zooming in
    double maxZoom = 1.7;               ///< the largest zoom
    bool operator==(const PlanOptions&) const = default;
};

/// Plans a film: how fast each stretch plays and where the camera looks. Pure and linear in the length of the
/// recording; nothing here fails. Samples and logs are expected in time order; ones that are not are sorted
/// first (stably). All times are source seconds.
namespace Planner {

/// The automatic plan of a recording.
Plan plan(const SourceInfo& info, const std::vector<ActivitySample>& samples,
          const std::optional<InputLog>& log, const PlanOptions& options);

/// The plan of a project. Takes the recording's facts as they are and crops them itself; everything in the
/// plan is in the coordinates of the project's crop.
Plan plan(const SourceInfo& info, const std::vector<ActivitySample>& samples,
          const std::optional<InputLog>& log, const Project& project, double viewportAspect);

/// The speed and zoom blocks in force: the project's own where present, else the automatic ones where their
/// switch is on, else none. Takes the facts as recorded, as `plan` does.
std::vector<SpeedBlock> speedBlocks(const SourceInfo& info, const std::vector<ActivitySample>& samples,
                                    const std::optional<InputLog>& log, const Project& project);
std::vector<ZoomBlock> zoomBlocks(const SourceInfo& info, const std::vector<ActivitySample>& samples,
                                  const std::optional<InputLog>& log, const Project& project,
                                  double viewportAspect);

/// Width over height of the picture area a project's film has for a recording.
double viewportAspect(const Project& project, const SourceInfo& info);

// Speed.

/// Finds what can be sped up: the automatic segments over [0, duration).
std::vector<SpeedSegment> speedSegments(double duration, const std::vector<ActivitySample>& samples,
                                        const std::optional<InputLog>& log, double maxSpeed);

/// The fast ones of `speedSegments`, as editable blocks.
std::vector<SpeedBlock> autoSpeedBlocks(double duration, const std::vector<ActivitySample>& samples,
                                        const std::optional<InputLog>& log, double maxSpeed);

/// Segments over [0, duration) that play the blocks at their speeds and the rest as recorded. A later block
/// never reaches back before the end of the one before; speeds are at least 0.05.
std::vector<SpeedSegment> fill(std::vector<SpeedBlock> blocks, double duration);

/// Turns the ranges into cuts. They stand in order and apart from one another, as `Project::removed` gives
/// them.
std::vector<SpeedSegment> remove(const std::vector<TimeRange>& ranges, std::vector<SpeedSegment> segments);

/// Stretches 0.04 s at the start or end of what is kept over `seconds` of film, for a card to stand on.
std::vector<SpeedSegment> hold(std::vector<SpeedSegment> segments, bool atStart, double seconds);

// Shots.

/// The calm shots that follow clicks and changes.
std::vector<Shot> shots(double duration, const std::vector<ActivitySample>& samples,
                        const std::optional<InputLog>& log, bool autoZoom, double baseW, double baseH,
                        double maxZoom);

/// The shots of a list of zoom blocks, resting in the base view between them.
std::vector<Shot> shots(std::vector<ZoomBlock> blocks, double baseW, double baseH);

/// The automatic shots as editable blocks, without the resting ones.
std::vector<ZoomBlock> autoZoomBlocks(const SourceInfo& info, const std::vector<ActivitySample>& samples,
                                      const std::optional<InputLog>& log, double viewportAspect,
                                      double maxZoom);

} // namespace Planner
} // namespace RecordCore
