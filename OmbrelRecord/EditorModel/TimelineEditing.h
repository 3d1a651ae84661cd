#pragma once

#include "OmbrelRecord/EditorModel/TimelineScale.h"
#include "RecordCore/Model/TimeRange.h"

#include <cstddef>
#include <limits>
#include <optional>
#include <vector>

namespace OmbrelRecord {

/// What a hand does on the timeline, as pure functions: what it takes hold of, where that snaps to and how
/// far it can go. Times are source seconds, positions pixels.
namespace TimelineEditing {

enum class Grip { body, start, end };

struct Held {
    std::size_t index = 0;
    Grip grip = Grip::body;
    bool operator==(const Held&) const = default;
};

/// The block (in time order, not overlapping) at `x`. Handles reach 6 pixels into a block and 4 beyond it,
/// yet leave at least the middle third of a narrow block as its body; between two blocks that touch, the
/// nearer one's side counts. The handles of the block `preferred` win over its neighbours'.
std::optional<Held> blockAt(const std::vector<RecordCore::TimeRange>& blocks, const TimelineScale& scale,
                            double x, std::optional<std::size_t> preferred = std::nullopt);

/// The times that edges snap to, in order.
class SnapPoints {
public:
    SnapPoints() = default;
    explicit SnapPoints(std::vector<double> times);
    /// The nearest within `reach` seconds.
    std::optional<double> near(double time, double reach) const;
    bool empty() const { return times.empty(); }

private:
    std::vector<double> times;
};

struct Snapped {
    RecordCore::TimeRange range;
    std::optional<double> at; ///< the time that it snapped to
    bool operator==(const Snapped&) const = default;
};

/// How far a block may go: from the end of its predecessor to the start of its successor.
struct Limits {
    double from = 0;
    double to = std::numeric_limits<double>::infinity();
    double shortest = 0.2;
};

/// The room that the block `index` has.
Limits limitsOf(const std::vector<RecordCore::TimeRange>& blocks, std::size_t index, double duration,
                double shortest);

/// `block` taken by `grip` and moved by `delta` seconds, snapped to what lies within `reach` seconds of a
/// moving edge and kept within the limits.
Snapped dragged(const RecordCore::TimeRange& block, Grip grip, double delta, const Limits& limits,
                const SnapPoints& points, double reach);

/// A range drawn from `anchor` to `now`, both ends snapped, within [0, duration].
Snapped drawn(double anchor, double now, double duration, const SnapPoints& points, double reach);

} // namespace TimelineEditing
} // namespace OmbrelRecord
