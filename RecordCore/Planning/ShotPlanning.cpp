#include "RecordCore/Planning/Planner.h"
#include "RecordCore/Planning/Sorted.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace RecordCore::Planner {

namespace {

constexpr double stepLength = 0.25;
constexpr double quietEnergy = 0.0035;
/// A click attracts the camera this long before and after it.
constexpr double clickReach = 0.6;
/// The activity that counts for a step: from this long before it …
constexpr double activityBefore = 0.5;
/// … to this long after.
constexpr double activityAfter = 1.0;
/// Samples with less than this share of the strongest energy don't shape the target.
constexpr double shapingShare = 0.35;
/// There is no gentle zoom: the camera is at the base or at least this far in.
constexpr double leastZoom = 1.35;

struct Point {
    double x = 0;
    double y = 0;
};

struct Base {
    double w = 1;
    double h = 1;
    bool isFull() const { return w >= 0.999 && h >= 0.999; }
    NRect view() const { return {0.5 - w / 2, 0.5 - h / 2, w, h}; }
};

Base baseFor(const SourceInfo& info, double viewportAspect) {
    const double r = viewportAspect / info.aspect();
    return r >= 1 ? Base{1, 1 / r} : Base{r, 1};
}

/// The view of the given size round a centre, moved to lie inside the source.
NRect placedView(double centerX, double centerY, double w, double h) {
    const double x = std::max(centerX - w / 2, 0.0);
    const double y = std::max(centerY - h / 2, 0.0);
    const double width = std::min(w, 1.0);
    const double height = std::min(h, 1.0);
    return {std::min(x, 1 - width), std::min(y, 1 - height), width, height};
}

/// What deserves attention at each step: a view, or none.
class Targets {
public:
    Targets(const std::vector<ActivitySample>& samples, const std::optional<InputLog>& log, Base base,
            double maxZoom) :
        base(base),
        maxZoom(maxZoom), samples(samples, [](const ActivitySample& sample) { return sample.t; }),
        clicks(clicksOf(log)) {}

    /// Steps are asked for in time order.
    std::optional<NRect> at(double t) {
        while (nextSample < samples->size() && (*samples)[nextSample].t < t - activityBefore)
            ++nextSample;
        if (const auto box = clickBox(t)) return view(*box);
        if (const auto box = activityBox(t)) return view(*box);
        return std::nullopt;
    }

private:
    static std::vector<InputLog::Event> clicksOf(const std::optional<InputLog>& log) {
        std::vector<InputLog::Event> clicks;
        if (!log) return clicks;
        const Sorted<InputLog::Event> inOrder(log->events,
                                              [](const InputLog::Event& event) { return event.t; });
        for (const InputLog::Event& event : *inOrder)
            if (event.kind == InputLog::Event::Kind::click || event.kind == InputLog::Event::Kind::rightClick)
                clicks.push_back(event);
        return clicks;
    }

    /// Round the last click near the step, when its place is known.
    std::optional<NRect> clickBox(double t) {
        while (nextClick < clicks.size() && clicks[nextClick].t < t + clickReach)
            ++nextClick;
        if (nextClick == 0) return std::nullopt;
        const InputLog::Event& last = clicks[nextClick - 1];
        if (!(t - clickReach <= last.t) || !last.x || !last.y) return std::nullopt;
        return NRect{*last.x - 0.1 * base.w, *last.y - 0.1 * base.h, 0.2 * base.w, 0.2 * base.h};
    }

    /// Round what changed most near the step.
    std::optional<NRect> activityBox(double t) const {
        const auto& list = *samples;
        double strongest = 0;
        for (std::size_t i = nextSample; i < list.size() && list[i].t < t + activityAfter; ++i)
            strongest = std::max(strongest, list[i].energy);
        if (strongest < quietEnergy) return std::nullopt;

        std::optional<NRect> box;
        for (std::size_t i = nextSample; i < list.size() && list[i].t < t + activityAfter; ++i) {
            if (!list[i].focus || !(list[i].energy >= shapingShare * strongest)) continue;
            box = box ? box->united(*list[i].focus) : *list[i].focus;
        }
        return box;
    }

    NRect view(const NRect& box) const {
        const double needX = (1.3 * box.w + 0.05) / base.w;
        const double needY = (1.3 * box.h + 0.05) / base.h;
        const double z = 1 / std::max(needX, needY);
        double zoom = z >= 1 ? std::min(z, maxZoom) : 1;
        if (zoom < leastZoom) zoom = 1;
        if (zoom == 1 && base.isFull()) return base.view();
        return placedView(box.midX(), box.midY(), base.w / zoom, base.h / zoom);
    }

    Base base;
    double maxZoom;
    Sorted<ActivitySample> samples;
    std::vector<InputLog::Event> clicks; ///< in time order
    std::size_t nextSample = 0;
    std::size_t nextClick = 0;
};

/// Turns the jittery targets into shots that are held.
class ShotList {
public:
    explicit ShotList(const NRect& base) : base(base), list{{0, base}} {}

    void step(double t, const std::optional<NRect>& target) {
        const double lastCut = list.back().start;
        const NRect& current = list.back().view;
        if (!target) {
            if (t - lastTarget > restAfter && current != base && t - lastCut > shortestShot)
                list.push_back({t, base});
            candidate.reset();
            return;
        }
        lastTarget = t;
        if (close(*target, current)) {
            candidate.reset();
        } else if (!candidate || !close(*target, candidate->view)) {
            candidate = Shot{t, *target};
        } else if (t - candidate->start >= confirmAfter && t - lastCut >= cutAfter) {
            list.push_back(
                {std::max(candidate->start - anticipation, lastCut + shortestShot), candidate->view});
            candidate.reset();
        }
    }

    std::vector<Shot> take() { return std::move(list); }

private:
    static constexpr double restAfter = 2.5;     ///< seconds without a target until the camera goes home
    static constexpr double shortestShot = 2.0;  ///< seconds
    static constexpr double confirmAfter = 1.0;  ///< seconds that a target must hold
    static constexpr double cutAfter = 2.6;      ///< seconds from the last cut until a target is taken up
    static constexpr double anticipation = 0.35; ///< the camera leaves this long before the target settled

    static bool close(const NRect& a, const NRect& b) {
        return std::abs(a.midX() - b.midX()) < 0.08 && std::abs(a.midY() - b.midY()) < 0.08 &&
               std::abs(std::log2(a.w / b.w)) < 0.32;
    }

    NRect base;
    std::vector<Shot> list;
    std::optional<Shot> candidate; ///< a view and since when it is wanted
    double lastTarget = 0;
};

} // namespace

std::vector<Shot> shots(double duration, const std::vector<ActivitySample>& samples,
                        const std::optional<InputLog>& log, bool autoZoom, double baseW, double baseH,
                        double maxZoom) {
    const Base base{baseW, baseH};
    Targets targets(samples, log, base, autoZoom ? maxZoom : 1);
    ShotList list(base.view());
    for (std::size_t i = 0; static_cast<double>(i) * stepLength < duration; ++i) {
        const double t = static_cast<double>(i) * stepLength;
        list.step(t, targets.at(t));
    }
    return list.take();
}

std::vector<Shot> shots(std::vector<ZoomBlock> blocks, double baseW, double baseH) {
    std::stable_sort(blocks.begin(), blocks.end(),
                     [](const ZoomBlock& a, const ZoomBlock& b) { return a.start < b.start; });
    const NRect base = Base{baseW, baseH}.view();
    std::vector<Shot> list{{0, base}};
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        const ZoomBlock& block = blocks[i];
        const double zoom = std::max(block.zoom, 1.0);
        list.push_back({block.start, placedView(block.x, block.y, baseW / zoom, baseH / zoom)});
        if (i + 1 == blocks.size() || block.end + 0.05 < blocks[i + 1].start)
            list.push_back({block.end, base});
    }
    return list;
}

std::vector<ZoomBlock> autoZoomBlocks(const SourceInfo& info, const std::vector<ActivitySample>& samples,
                                      const std::optional<InputLog>& log, double viewportAspect,
                                      double maxZoom) {
    const Base base = baseFor(info, viewportAspect);
    const std::vector<Shot> list = shots(info.duration, samples, log, true, base.w, base.h, maxZoom);
    std::vector<ZoomBlock> blocks;
    for (std::size_t i = 0; i < list.size(); ++i) {
        const Shot& shot = list[i];
        const double end = i + 1 < list.size() ? list[i + 1].start : info.duration;
        const double zoom = base.w / shot.view.w;
        const double x = shot.view.midX();
        const double y = shot.view.midY();
        const bool resting = std::abs(x - 0.5) < 0.01 && std::abs(y - 0.5) < 0.01 && zoom <= 1.01;
        if (end - shot.start > 0.05 && !resting)
            blocks.push_back(ZoomBlock::make(shot.start, end, x, y, zoom));
    }
    return blocks;
}

Plan plan(const SourceInfo& info, const std::vector<ActivitySample>& samples,
          const std::optional<InputLog>& log, const PlanOptions& options) {
    const Base base = baseFor(info, options.viewportAspect);
    Plan plan;
    plan.source = info;
    if (options.skipWaiting)
        plan.segments = speedSegments(info.duration, samples, log, 40);
    else
        plan.segments = {{0, info.duration, 1, SpeedSegment::Reason::normal}};
    plan.shots = shots(info.duration, samples, log, options.autoZoom, base.w, base.h, options.maxZoom);
    plan.baseW = base.w;
    plan.baseH = base.h;
    return plan;
}

namespace {

constexpr double titleHold = 2.2; ///< seconds the opening card stands
constexpr double endHold = 2.8;   ///< seconds the closing card stands

std::vector<SpeedBlock> blocksInForce(const Project& project, const Project::Cropped& facts) {
    if (project.speedBlocks) return *project.speedBlocks;
    if (!project.skipWaiting) return {};
    return autoSpeedBlocks(facts.info.duration, facts.samples, facts.log, project.maxSpeed);
}

std::vector<ZoomBlock> zoomsInForce(const Project& project, const Project::Cropped& facts,
                                    double viewportAspect) {
    if (project.zoomBlocks) return *project.zoomBlocks;
    if (!project.followAction) return {};
    return autoZoomBlocks(facts.info, facts.samples, facts.log, viewportAspect, project.maxZoom);
}

} // namespace

Plan plan(const SourceInfo& info, const std::vector<ActivitySample>& samples,
          const std::optional<InputLog>& log, const Project& project, double viewportAspect) {
    const Project::Cropped facts = project.cropped(info, samples, log);
    const Base base = baseFor(facts.info, viewportAspect);

    Plan plan;
    plan.source = facts.info;
    plan.baseW = base.w;
    plan.baseH = base.h;
    plan.crop = project.cropInForce();
    plan.segments = fill(blocksInForce(project, facts), info.duration);
    plan.segments = remove(project.removed(info.duration), std::move(plan.segments));
    if (project.showTitle && !project.title.empty())
        plan.segments = hold(std::move(plan.segments), true, titleHold);
    if (project.showEnd && !project.endTitle.empty())
        plan.segments = hold(std::move(plan.segments), false, endHold);
    plan.shots = shots(zoomsInForce(project, facts, viewportAspect), base.w, base.h);
    return plan;
}

std::vector<SpeedBlock> speedBlocks(const SourceInfo& info, const std::vector<ActivitySample>& samples,
                                    const std::optional<InputLog>& log, const Project& project) {
    return blocksInForce(project, project.cropped(info, samples, log));
}

std::vector<ZoomBlock> zoomBlocks(const SourceInfo& info, const std::vector<ActivitySample>& samples,
                                  const std::optional<InputLog>& log, const Project& project,
                                  double viewportAspect) {
    return zoomsInForce(project, project.cropped(info, samples, log), viewportAspect);
}

double viewportAspect(const Project& project, const SourceInfo& info) {
    const CanvasRect rect = window(project.outputFormat(), project.sourceAspect(info), project.padding);
    return rect.width / rect.height;
}

} // namespace RecordCore::Planner
