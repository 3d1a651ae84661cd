#pragma once

#include "OmbrelRecord/EditorModel/EditorModel.h"
#include "OmbrelRecord/EditorModel/TimelineEditing.h"

#include <optional>
#include <vector>

namespace OmbrelRecord {

/// What lies on the timeline of a recording: its two lanes of blocks, asked alike, its ends and its cuts. A
/// look at the model, made when it is needed; times are source seconds. Main thread.
class TimelineLanes {
public:
    enum class Lane { speed, zoom };

    explicit TimelineLanes(EditorModel& model) : model(model) {}

    /// Seconds of the shortest block of a lane.
    static double shortest(Lane lane);

    /// The blocks of a lane, in their order.
    std::vector<RecordCore::TimeRange> ranges(Lane lane) const;
    RecordCore::Uuid idAt(Lane lane, std::size_t index) const;
    std::optional<std::size_t> selectedIndex(Lane lane) const;
    void selectBlock(Lane lane, const RecordCore::Uuid& id);
    /// Moves a block.
    void setBlock(Lane lane, const RecordCore::Uuid& id, const RecordCore::TimeRange& range);
    /// The stretch without a block around a time; none inside of a block.
    std::optional<RecordCore::TimeRange> gapAt(Lane lane, double time) const;

    /// The cut, between the ends of the film, that holds a time.
    std::optional<RecordCore::TimeRange> cutAt(double time) const;
    double filmStart() const;
    double filmEnd() const;

    /// Everything that an edge may stick to: blocks (but for one), cuts, splits, ends, clicks, the playhead.
    TimelineEditing::SnapPoints snapPoints(const std::optional<RecordCore::Uuid>& except,
                                           bool playhead = true) const;

private:
    EditorModel& model;
};

} // namespace OmbrelRecord
