#include "OmbrelRecord/EditorModel/ProjectEditing.h"

#include <cmath>

namespace OmbrelRecord::ProjectEditing {

using namespace RecordCore;

namespace {

constexpr double sameTime = 0.000001;
constexpr double pieceMargin = 0.05;
constexpr double trimMargin = 0.01;
/// A share of the energy that a view has to hold; the rest is far-off flicker.
constexpr double shareFramed = 0.9;
/// Room round what is framed.
constexpr double frameMargin = 1.1;
/// What a click counts for beside changes of the screen, whose energy is at most 1 a sample.
constexpr double clickWeight = 0.5;

bool usable(const TimeRange& range) {
    return std::isfinite(range.start) && std::isfinite(range.end) && range.start < range.end;
}

template <typename Block>
bool edit(std::optional<std::vector<Block>>& list, std::vector<Block> blocks, const Uuid& id,
          const std::function<void(Block&)>& change, double shortest, double duration) {
    const auto block = std::find_if(blocks.begin(), blocks.end(), [&](const Block& b) { return b.id == id; });
    if (block == blocks.end()) return false;
    change(*block);
    block->id = id;
    clampTimes(*block, shortest, duration);
    list = std::move(blocks);
    return true;
}

template <typename Block>
bool remove(std::optional<std::vector<Block>>& list, std::vector<Block> blocks, const Uuid& id) {
    if (std::erase_if(blocks, [&](const Block& b) { return b.id == id; }) == 0) return false;
    list = std::move(blocks);
    return true;
}

/// The blocks without what lies in the range; remainders are blocks of their own.
template <typename Block>
std::vector<Block> carved(const std::vector<Block>& blocks, const TimeRange& range) {
    std::vector<Block> out;
    for (const Block& block : blocks) {
        if (!(block.start < range.end && block.end > range.start)) {
            out.push_back(block);
            continue;
        }
        const auto keep = [&](double start, double end) {
            if (!(end - start > shortestRemainder)) return;
            Block& remainder = out.emplace_back(block);
            remainder.id = Uuid::fresh();
            remainder.start = start;
            remainder.end = end;
        };
        keep(block.start, range.start);
        keep(range.end, block.end);
    }
    return out;
}

template <typename Block>
void sortByStart(std::vector<Block>& blocks) {
    std::stable_sort(blocks.begin(), blocks.end(),
                     [](const Block& a, const Block& b) { return a.start < b.start; });
}

/// Something that happened at a place of the picture.
struct Happening {
    NRect place;
    double weight = 0;
};

/// Half the length, from `centre` outward, that holds `shareFramed` of the weight.
template <typename Reach>
double reachFramed(const std::vector<Happening>& happenings, double total, const Reach& reach) {
    std::vector<std::pair<double, double>> reaches;
    reaches.reserve(happenings.size());
    for (const Happening& happening : happenings)
        reaches.emplace_back(reach(happening.place), happening.weight);
    std::sort(reaches.begin(), reaches.end());
    double weight = 0;
    for (const auto& [length, share] : reaches) {
        weight += share;
        if (weight >= shareFramed * total) return length;
    }
    return reaches.empty() ? 0 : reaches.back().first;
}

} // namespace

bool editSpeed(Project& project, std::vector<SpeedBlock> blocks, const Uuid& id,
               const std::function<void(SpeedBlock&)>& change, double duration) {
    return edit(project.speedBlocks, std::move(blocks), id, change, shortestSpeedBlock, duration);
}

bool editZoom(Project& project, std::vector<ZoomBlock> blocks, const Uuid& id,
              const std::function<void(ZoomBlock&)>& change, double duration) {
    return edit(project.zoomBlocks, std::move(blocks), id, change, shortestZoomBlock, duration);
}

std::optional<Uuid> setSpeed(Project& project, const std::vector<SpeedBlock>& blocks, const TimeRange& range,
                             double speed) {
    if (!usable(range) || !(speed > 0) || !std::isfinite(speed)) return std::nullopt;
    std::vector<SpeedBlock> list = carved(blocks, range);
    std::optional<Uuid> made;
    if (speed != 1.0) {
        list.push_back(SpeedBlock::make(range.start, range.end, speed, SpeedSegment::Reason::manual));
        made = list.back().id;
    }
    sortByStart(list);
    project.speedBlocks = std::move(list);
    return made;
}

bool addZoom(Project& project, const std::vector<ZoomBlock>& blocks, const ZoomBlock& block) {
    const TimeRange range{block.start, block.end};
    if (!usable(range)) return false;
    std::vector<ZoomBlock> list = carved(blocks, range);
    list.push_back(block);
    sortByStart(list);
    project.zoomBlocks = std::move(list);
    return true;
}

bool deleteSpeed(Project& project, std::vector<SpeedBlock> blocks, const Uuid& id) {
    return remove(project.speedBlocks, std::move(blocks), id);
}

bool deleteZoom(Project& project, std::vector<ZoomBlock> blocks, const Uuid& id) {
    return remove(project.zoomBlocks, std::move(blocks), id);
}

void cut(Project& project, const TimeRange& range) {
    if (!usable(range)) return;
    project.cuts.push_back(range);
    std::erase_if(project.splits, [&](double t) { return range.contains(t); });
}

void restoreCuts(Project& project, const TimeRange& range) {
    std::erase_if(project.cuts, [&](const TimeRange& cut) {
        return cut.end > range.start - sameTime && cut.start < range.end + sameTime;
    });
}

std::vector<TimeRange> interiorCuts(const Project& project, double duration) {
    std::vector<TimeRange> cuts = project.mergedCuts();
    const double trimEnd = project.trimEnd.value_or(duration);
    std::erase_if(cuts, [&](const TimeRange& cut) {
        return !(cut.start > project.trimStart + trimMargin && cut.end < trimEnd - trimMargin);
    });
    return cuts;
}

bool split(Project& project, double time, double duration) {
    for (const TimeRange& piece : project.pieces(duration)) {
        if (!(piece.start + pieceMargin < time && time < piece.end - pieceMargin)) continue;
        project.splits.push_back(time);
        return true;
    }
    return false;
}

void markStart(Project& project, double time, double duration) {
    if (!std::isfinite(time)) return;
    const double t = std::clamp(time, 0.0, std::max(0.0, duration - shortestFilm));
    project.trimStart = t;
    project.trimEnd = std::max(project.trimEnd.value_or(duration), t + shortestFilm);
}

void markEnd(Project& project, double time, double duration) {
    if (!std::isfinite(time)) return;
    const double t = std::clamp(time, std::min(shortestFilm, duration), duration);
    project.trimEnd = t;
    project.trimStart = std::min(project.trimStart, std::max(0.0, t - shortestFilm));
}

int skippedCount(const Plan& plan) {
    return static_cast<int>(
        std::count_if(plan.segments.begin(), plan.segments.end(),
                      [](const SpeedSegment& segment) { return !segment.isCut() && segment.speed > 1.0; }));
}

ZoomBlock framed(const TimeRange& range, const Plan& plan, const std::vector<ActivitySample>& samples,
                 const std::optional<InputLog>& log, double maxZoom) {
    std::vector<Happening> happenings;
    for (const ActivitySample& sample : samples)
        if (range.contains(sample.t) && sample.focus && sample.energy > 0)
            happenings.push_back({*sample.focus, sample.energy});
    if (log)
        for (const InputLog::Event& event : log->events)
            if (range.contains(event.t) && event.kind != InputLog::Event::Kind::scroll && event.x &&
                event.y && NRect::full().contains(*event.x, *event.y))
                happenings.push_back({{*event.x, *event.y, 0, 0}, clickWeight});

    double total = 0;
    double x = 0;
    double y = 0;
    for (const Happening& happening : happenings) {
        total += happening.weight;
        x += happening.weight * happening.place.midX();
        y += happening.weight * happening.place.midY();
    }
    x = total > 0 ? x / total : 0.5;
    y = total > 0 ? y / total : 0.5;

    const double halfWidth = reachFramed(happenings, total, [x](const NRect& place) {
        return std::max(std::abs(place.x - x), std::abs(place.maxX() - x));
    });
    const double halfHeight = reachFramed(happenings, total, [y](const NRect& place) {
        return std::max(std::abs(place.y - y), std::abs(place.maxY() - y));
    });
    double zoom = weakestZoom;
    if (total > 0) {
        const double smallest = 1e-6; // a single click frames nothing: then the strongest zoom
        zoom = std::min(plan.baseW / (2 * frameMargin * std::max(halfWidth, smallest)),
                        plan.baseH / (2 * frameMargin * std::max(halfHeight, smallest)));
    }
    // The user's limit wins over ours.
    zoom = std::min(std::max(zoom, weakestZoom), maxZoom);
    return ZoomBlock::make(range.start, range.end, x, y, zoom);
}

} // namespace OmbrelRecord::ProjectEditing
