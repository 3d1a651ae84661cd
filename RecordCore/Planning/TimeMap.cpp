#include "RecordCore/Planning/TimeMap.h"

#include <algorithm>
#include <limits>

namespace RecordCore {

TimeMap::TimeMap(const Plan& plan) : segments(plan.segments), shots(plan.shots), baseView(plan.baseView()) {
    outputEnds.reserve(segments.size());
    double acc = 0;
    for (const SpeedSegment& segment : segments) {
        if (!segment.isCut()) acc += (segment.end - segment.start) / segment.speed;
        outputEnds.push_back(acc);
    }
    earliestStarts.resize(shots.size());
    double earliest = std::numeric_limits<double>::infinity();
    for (std::size_t i = shots.size(); i-- > 0;) {
        earliest = std::min(earliest, shots[i].start);
        earliestStarts[i] = earliest;
    }
}

std::size_t TimeMap::firstEndingAfter(double s) const {
    const auto found =
        std::upper_bound(segments.begin(), segments.end(), s,
                         [](double time, const SpeedSegment& segment) { return time < segment.end; });
    return static_cast<std::size_t>(found - segments.begin());
}

double TimeMap::outputTime(double s) const {
    const std::size_t i = firstEndingAfter(s);
    const double acc = i == 0 ? 0 : outputEnds[i - 1];
    if (i == segments.size() || segments[i].isCut()) return acc;
    return acc + std::max(s - segments[i].start, 0.0) / segments[i].speed;
}

double TimeMap::sourceTime(double t) const {
    auto i = static_cast<std::size_t>(std::upper_bound(outputEnds.begin(), outputEnds.end(), t) -
                                      outputEnds.begin());
    // Only a time before the film can come upon a cut here: a cut ends where its predecessor does.
    while (i < segments.size() && segments[i].isCut())
        ++i;
    if (i == segments.size()) return segments.empty() ? 0 : segments.back().end;
    const double acc = i == 0 ? 0 : outputEnds[i - 1];
    return segments[i].start + (t - acc) * segments[i].speed;
}

const SpeedSegment* TimeMap::segmentAt(double s) const {
    if (segments.empty()) return nullptr;
    const std::size_t i = firstEndingAfter(s);
    if (i < segments.size() && segments[i].start <= s && !segments[i].isCut()) return &segments[i];
    return &segments.back();
}

const SpeedSegment* TimeMap::segmentHolding(double s) const {
    if (segments.empty()) return nullptr;
    return &segments[std::min(firstEndingAfter(s), segments.size() - 1)];
}

NRect TimeMap::viewAt(double s) const {
    if (shots.empty()) return baseView;
    // The last index whose remaining shots begin at or before s is itself the last shot begun.
    const auto found = std::upper_bound(earliestStarts.begin(), earliestStarts.end(), s);
    return shots[static_cast<std::size_t>(std::max<std::ptrdiff_t>(found - earliestStarts.begin() - 1, 0))]
        .view;
}

} // namespace RecordCore
