#include "RecordCore/Planning/Planner.h"
#include "RecordCore/Planning/Sorted.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>

namespace RecordCore::Planner {

namespace {

using Reason = SpeedSegment::Reason;

constexpr double binLength = 0.25;
constexpr double quietEnergy = 0.0035;
/// The user counts as active this long before and after doing something.
constexpr double activityMargin = 0.5;
constexpr double moveThreshold = 0.004;
constexpr double shortestIdle = 3.0;
constexpr double shortestAgent = 4.0;
constexpr double leadIn = 0.4;
constexpr double leadOut = 0.5;
constexpr double nearly = 0.000001;
constexpr double slowestSpeed = 0.05;
/// The slice of source that a hold stretches.
constexpr double holdSlice = 0.04;

/// `InputLog::userActive` for windows that only move forward: each pointer sample is looked at a few times,
/// however long the log.
class ActivityCursor {
public:
    explicit ActivityCursor(const InputLog& log) : cursor(log.cursor, byTime), events(log.events, byTime) {}

    bool userActive(double from, double to) {
        const auto& moments = *events;
        while (nextEvent < moments.size() && moments[nextEvent].t < from)
            ++nextEvent;
        if (nextEvent < moments.size() && moments[nextEvent].t < to) return true;

        const auto& path = *cursor;
        while (nextSample < path.size() && path[nextSample].t < from)
            ++nextSample;
        for (std::size_t i = nextSample; i < path.size() && path[i].t < to; ++i) {
            if (std::abs(path[i].x - path[nextSample].x) > moveThreshold ||
                std::abs(path[i].y - path[nextSample].y) > moveThreshold)
                return true;
        }
        return false;
    }

private:
    static constexpr auto byTime = [](const auto& entry) { return entry.t; };

    Sorted<InputLog::CursorSample> cursor;
    Sorted<InputLog::Event> events;
    std::size_t nextSample = 0;
    std::size_t nextEvent = 0;
};

/// What each bin of the recording is: normal, idle or an agent at work.
std::vector<Reason> classify(std::size_t bins, const std::vector<ActivitySample>& samples,
                             const std::optional<InputLog>& log) {
    const Sorted<ActivitySample> inOrder(samples, [](const ActivitySample& sample) { return sample.t; });
    std::optional<ActivityCursor> user;
    if (log) user.emplace(*log);
    const bool keysTracked = log && log->keysTracked.value_or(true);

    std::vector<Reason> reasons(bins, Reason::normal);
    std::size_t next = 0;
    for (std::size_t i = 0; i < bins; ++i) {
        const double start = static_cast<double>(i) * binLength;
        const double end = start + binLength;

        while (next < inOrder->size() && (*inOrder)[next].t < start)
            ++next;
        double energy = 0;
        for (; next < inOrder->size() && (*inOrder)[next].t < end; ++next)
            energy = std::max(energy, (*inOrder)[next].energy);
        const bool quiet = energy < quietEnergy;

        // Only a log that tells of keys lets a busy screen without input count as an agent at work.
        if (!quiet && (!log || !keysTracked)) continue;
        if (user && user->userActive(start - activityMargin, end + activityMargin)) continue;
        reasons[i] = quiet ? Reason::idle : Reason::agentWorking;
    }
    return reasons;
}

struct Run {
    Reason reason;
    double start;
    double end;
};

/// Joins neighbouring bins. A waiting run with any agent's work in it is an agent's.
std::vector<Run> runsOf(const std::vector<Reason>& bins, double duration) {
    std::vector<Run> runs;
    for (std::size_t i = 0; i < bins.size(); ++i) {
        const double start = static_cast<double>(i) * binLength;
        const double end = std::min(start + binLength, duration);
        if (!runs.empty() && (runs.back().reason == Reason::normal) == (bins[i] == Reason::normal)) {
            runs.back().end = end;
            if (bins[i] == Reason::agentWorking) runs.back().reason = Reason::agentWorking;
        } else {
            runs.push_back({bins[i], start, end});
        }
    }
    return runs;
}

void append(std::vector<SpeedSegment>& segments, const SpeedSegment& segment) {
    if (segment.length() <= nearly) return;
    if (!segments.empty() && segments.back().speed == segment.speed &&
        segments.back().reason == segment.reason)
        segments.back().end = segment.end;
    else
        segments.push_back(segment);
}

} // namespace

std::vector<SpeedSegment> speedSegments(double duration, const std::vector<ActivitySample>& samples,
                                        const std::optional<InputLog>& log, double maxSpeed) {
    if (!(duration > 0)) return {};
    const auto bins = static_cast<std::size_t>(std::ceil(duration * 4));
    const double fastest = std::max(maxSpeed, 2.0);

    std::vector<SpeedSegment> segments;
    for (const Run& run : runsOf(classify(bins, samples, log), duration)) {
        const double shortest = run.reason == Reason::idle ? shortestIdle : shortestAgent;
        if (run.reason == Reason::normal || run.end - run.start < shortest) {
            append(segments, {run.start, run.end, 1, Reason::normal});
            continue;
        }
        const double fastStart = run.start + leadIn;
        const double fastEnd = run.end - leadOut;
        const double length = fastEnd - fastStart;
        // An idle stretch shrinks to about 0.8 s of film, an agent's work to about 2.5 s.
        const double wanted =
            run.reason == Reason::idle ? std::max(length / 0.8, 6.0) : std::max(length / 2.5, 3.0);
        const double speed = std::round(std::min(wanted, fastest));
        append(segments, {run.start, fastStart, 1, Reason::normal});
        append(segments, {fastStart, fastEnd, speed, run.reason});
        append(segments, {fastEnd, run.end, 1, Reason::normal});
    }
    return segments;
}

std::vector<SpeedBlock> autoSpeedBlocks(double duration, const std::vector<ActivitySample>& samples,
                                        const std::optional<InputLog>& log, double maxSpeed) {
    std::vector<SpeedBlock> blocks;
    for (const SpeedSegment& segment : speedSegments(duration, samples, log, maxSpeed))
        if (segment.speed > 1)
            blocks.push_back(SpeedBlock::make(segment.start, segment.end, segment.speed, segment.reason));
    return blocks;
}

std::vector<SpeedSegment> fill(std::vector<SpeedBlock> blocks, double duration) {
    std::stable_sort(blocks.begin(), blocks.end(),
                     [](const SpeedBlock& a, const SpeedBlock& b) { return a.start < b.start; });
    std::vector<SpeedSegment> segments;
    double cursor = 0;
    for (const SpeedBlock& block : blocks) {
        const double start = std::max(cursor, std::min(duration, block.start));
        const double end = std::min(block.end, duration);
        if (!(start + nearly < end)) continue;
        if (cursor < start) segments.push_back({cursor, start, 1, Reason::normal});
        segments.push_back({start, end, std::max(block.speed, slowestSpeed), block.reason});
        cursor = end;
    }
    if (cursor < duration) segments.push_back({cursor, duration, 1, Reason::normal});
    return segments;
}

std::vector<SpeedSegment> remove(const std::vector<TimeRange>& ranges, std::vector<SpeedSegment> segments) {
    if (ranges.empty()) return segments;

    std::vector<SpeedSegment> result;
    const auto add = [&result](const SpeedSegment& piece) {
        if (piece.length() > nearly) result.push_back(piece);
    };
    std::size_t first = 0;
    for (const SpeedSegment& segment : segments) {
        if (segment.isCut()) {
            add(segment);
            continue;
        }
        while (first < ranges.size() && ranges[first].end <= segment.start)
            ++first;
        SpeedSegment rest = segment;
        for (std::size_t i = first; i < ranges.size() && ranges[i].start < segment.end; ++i) {
            const auto [lo, hi] = ranges[i];
            if (rest.start < lo) add({rest.start, lo, rest.speed, rest.reason});
            add({std::max(rest.start, lo), std::min(rest.end, hi), 1, Reason::cut});
            rest.start = std::min(hi, rest.end);
        }
        add(rest);
    }
    return result;
}

std::vector<SpeedSegment> hold(std::vector<SpeedSegment> segments, bool atStart, double seconds) {
    const auto kept = [](const SpeedSegment& segment) { return !segment.isCut(); };
    auto found = segments.end();
    if (atStart) {
        found = std::find_if(segments.begin(), segments.end(), kept);
    } else {
        const auto last = std::find_if(segments.rbegin(), segments.rend(), kept);
        if (last != segments.rend()) found = std::prev(last.base());
    }
    if (found == segments.end() || !(found->length() > 2 * holdSlice)) return segments;

    const SpeedSegment whole = *found;
    const double speed = holdSlice / seconds;
    if (atStart) {
        *found = {whole.start + holdSlice, whole.end, whole.speed, whole.reason};
        segments.insert(found, {whole.start, whole.start + holdSlice, speed, Reason::hold});
    } else {
        *found = {whole.start, whole.end - holdSlice, whole.speed, whole.reason};
        segments.insert(std::next(found), {whole.end - holdSlice, whole.end, speed, Reason::hold});
    }
    return segments;
}

} // namespace RecordCore::Planner
