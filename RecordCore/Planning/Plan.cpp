#include "RecordCore/Planning/Plan.h"

#include <algorithm>

namespace RecordCore {

double Plan::outputDuration() const {
    double total = 0;
    for (const SpeedSegment& segment : segments)
        if (!segment.isCut()) total += (segment.end - segment.start) / segment.speed;
    return total;
}

double Plan::outputTime(double s) const {
    double acc = 0;
    for (const SpeedSegment& segment : segments) {
        if (segment.end > s) {
            if (!segment.isCut()) acc += std::max(s - segment.start, 0.0) / segment.speed;
            break;
        }
        if (!segment.isCut()) acc += (segment.end - segment.start) / segment.speed;
    }
    return acc;
}

double Plan::sourceTime(double t) const {
    double acc = 0;
    for (const SpeedSegment& segment : segments) {
        if (segment.isCut()) continue;
        const double next = acc + (segment.end - segment.start) / segment.speed;
        if (t < next) return segment.start + (t - acc) * segment.speed;
        acc = next;
    }
    return segments.empty() ? 0 : segments.back().end;
}

const SpeedSegment* Plan::segmentAt(double s) const {
    for (const SpeedSegment& segment : segments)
        if (segment.start <= s && s < segment.end && !segment.isCut()) return &segment;
    return segments.empty() ? nullptr : &segments.back();
}

const SpeedSegment* Plan::segmentHolding(double s) const {
    for (const SpeedSegment& segment : segments)
        if (segment.end > s) return &segment;
    return segments.empty() ? nullptr : &segments.back();
}

NRect Plan::viewAt(double s) const {
    if (shots.empty()) return baseView();
    for (auto shot = shots.rbegin(); shot != shots.rend(); ++shot)
        if (shot->start <= s) return shot->view;
    return shots.front().view;
}

} // namespace RecordCore
