#pragma once

#include "RecordCore/Planning/Plan.h"

#include <cstddef>
#include <vector>

namespace RecordCore {

/// The time mappings of a plan, prepared for being asked once per frame: the same answers as the plan's own,
/// to the last bit, in logarithmic time. Immutable, with its own copy of what it needs. The segments must
/// stand in source order without overlap, as the planner makes them.
class TimeMap {
public:
    explicit TimeMap(const Plan& plan);

    double outputDuration() const { return outputEnds.empty() ? 0 : outputEnds.back(); }
    double outputTime(double s) const;
    double sourceTime(double t) const;
    const SpeedSegment* segmentAt(double s) const;
    const SpeedSegment* segmentHolding(double s) const;
    NRect viewAt(double s) const;

private:
    std::size_t firstEndingAfter(double s) const;

    std::vector<SpeedSegment> segments;
    std::vector<double> outputEnds; ///< output time at which each segment is over; non-decreasing
    std::vector<Shot> shots;
    std::vector<double> earliestStarts; ///< of each shot and all that follow it; non-decreasing
    NRect baseView;
};

} // namespace RecordCore
