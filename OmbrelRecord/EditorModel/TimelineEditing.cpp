#include "OmbrelRecord/EditorModel/TimelineEditing.h"

#include <algorithm>
#include <cmath>

namespace OmbrelRecord::TimelineEditing {

using RecordCore::TimeRange;

namespace {

constexpr double gripInside = 6;
constexpr double gripOutside = 4;
/// The narrowest that a block is drawn and can be taken hold of.
constexpr double narrowest = 4;

} // namespace

std::optional<Held> blockAt(const std::vector<TimeRange>& blocks, const TimelineScale& scale, double x,
                            std::optional<std::size_t> preferred) {
    std::optional<Held> best;
    double bestDistance = 0;
    const auto consider = [&](std::size_t i, Grip grip, double distance) {
        // Bodies beat the handles of others from outside; the preferred block beats all.
        if (preferred && *preferred == i) distance -= 100;
        if (best && bestDistance <= distance) return;
        best = Held{i, grip};
        bestDistance = distance;
    };
    const double from = scale.time(x - narrowest - gripOutside);
    const double to = scale.time(x + gripOutside);
    auto block = std::lower_bound(blocks.begin(), blocks.end(), from,
                                  [](const TimeRange& range, double time) { return range.end < time; });
    for (; block != blocks.end() && block->start <= to; ++block) {
        const auto i = static_cast<std::size_t>(block - blocks.begin());
        const double left = scale.x(block->start);
        const double right = std::max(scale.x(block->end), left + narrowest);
        if (x < left - gripOutside || x > right + gripOutside) continue;
        const double inside = std::min(gripInside, (right - left) / 3);
        if (x <= left + inside)
            consider(i, Grip::start, std::abs(x - left) + (x < left ? 1 : 0));
        else if (x >= right - inside)
            consider(i, Grip::end, std::abs(x - right) + (x > right ? 1 : 0));
        else
            consider(i, Grip::body, 0);
    }
    return best;
}

SnapPoints::SnapPoints(std::vector<double> all) : times(std::move(all)) {
    std::sort(times.begin(), times.end());
    times.erase(std::unique(times.begin(), times.end()), times.end());
}

std::optional<double> SnapPoints::near(double time, double reach) const {
    const auto above = std::lower_bound(times.begin(), times.end(), time);
    std::optional<double> found;
    if (above != times.end() && *above - time <= reach) found = *above;
    if (above != times.begin()) {
        const double below = *(above - 1);
        if (time - below <= reach && (!found || time - below < *found - time)) found = below;
    }
    return found;
}

Limits limitsOf(const std::vector<TimeRange>& blocks, std::size_t index, double duration, double shortest) {
    Limits limits{0, duration, shortest};
    if (index > 0) limits.from = std::min(blocks[index - 1].end, blocks[index].start);
    if (index + 1 < blocks.size()) limits.to = std::max(blocks[index + 1].start, blocks[index].end);
    return limits;
}

Snapped dragged(const TimeRange& block, Grip grip, double delta, const Limits& limits,
                const SnapPoints& points, double reach) {
    const double to = std::max(limits.to, limits.from);
    Snapped result{block, std::nullopt};
    TimeRange& range = result.range;
    if (grip == Grip::body) {
        const double length = std::min(block.length(), to - limits.from);
        double start = block.start + delta;
        const auto first = points.near(start, reach);
        const auto second = points.near(start + length, reach);
        if (first && (!second || std::abs(*first - start) <= std::abs(*second - start - length))) {
            start = *first;
            result.at = first;
        } else if (second) {
            start = *second - length;
            result.at = second;
        }
        range.start = std::clamp(start, limits.from, to - length);
        range.end = range.start + length;
        if (result.at && range.start != start) result.at.reset();
        return result;
    }
    const bool left = grip == Grip::start;
    double edge = (left ? block.start : block.end) + delta;
    if (const auto snap = points.near(edge, reach)) {
        edge = *snap;
        result.at = snap;
    }
    const double wanted = edge;
    if (left)
        range.start = edge =
            std::clamp(edge, limits.from, std::max(limits.from, block.end - limits.shortest));
    else
        range.end = edge = std::clamp(edge, std::min(to, block.start + limits.shortest), to);
    if (edge != wanted) result.at.reset();
    return result;
}

Snapped drawn(double anchor, double now, double duration, const SnapPoints& points, double reach) {
    Snapped result;
    const auto place = [&](double time) {
        time = std::clamp(time, 0.0, duration);
        const auto snap = points.near(time, reach);
        return std::pair(snap.value_or(time), snap);
    };
    const auto [first, ignored] = place(anchor);
    const auto [second, hint] = place(now);
    result.range = TimeRange::between(first, second);
    result.at = hint;
    return result;
}

} // namespace OmbrelRecord::TimelineEditing
