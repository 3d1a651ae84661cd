#include "RecordCore/Motion/Scene.h"

#include "RecordCore/Model/Clock.h"
#include "RecordCore/Model/OutputFormat.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace RecordCore {

namespace {

constexpr double smoothStiffness = 2.6;
constexpr double focusedStiffness = 4.6;
constexpr double standardPointerScale = 1.6;
constexpr double overlayFade = 0.12; ///< seconds of film in which pill and captions fade
constexpr double endCardSeconds = 2.8;
constexpr double endFade = 0.4;
constexpr double titleSeconds = 1.7;
constexpr double namedWait = 10; ///< a wait at least this long is named with its length

} // namespace

Scene::Scene(const Plan& plan, const Project& project, const std::optional<InputLog>& log, double fps) :
    map(plan), fps(fps), fullWidth(plan.baseW),
    camera(CameraPath::of(plan, map, fps, project.motion == "smooth" ? smoothStiffness : focusedStiffness)),
    captions(CaptionLayout::shownLines(project, plan)), cursorSize(project.cursorSize),
    clickBounce(project.clickBounce), cameraMakeRoom(project.cameraMakeRoom),
    showTitle(project.showTitle && !project.title.empty()),
    showEnd(project.showEnd && !project.endTitle.empty()) {
    const CanvasRect rect = window(project.outputFormat(), plan.source.aspect(), project.padding);
    settled = SettledPath(camera, rect.width, rect.height);
    if (log) pointer = PointerTrack::of(project.cropped(*log), map, project, fps);
    if (project.showClock) {
        const std::vector<TimeRange> kept = project.kept(plan.source.duration);
        clockOrigin = kept.empty() ? 0 : kept.front().start;
    }
}

std::int64_t Scene::frameCount() const {
    return static_cast<std::int64_t>(std::max(0.0, std::ceil(map.outputDuration() * fps - 1e-6)));
}

std::string Scene::clock(double seconds) {
    return RecordCore::clock(seconds);
}

FrameState Scene::state(double seconds, const NRect& view) const {
    FrameState state;
    state.view = view;
    const double source = map.sourceTime(seconds);
    state.pill = pill(source);

    if (pointer) {
        state.pointer = pointer->state(seconds);
        state.ripples = pointer->ripples(seconds);
        state.pointerScale = cursorSize;
    } else {
        state.pointerScale = standardPointerScale;
    }
    if (clickBounce > 0 && !state.ripples.empty()) {
        const auto youngest =
            std::min_element(state.ripples.begin(), state.ripples.end(),
                             [](const auto& a, const auto& b) { return a.progress < b.progress; });
        const double k = std::max(0.0, std::sin(std::min(youngest->progress / 0.55, 1.0) * std::numbers::pi));
        state.pointerScale *= 1 - 0.22 * clickBounce * k;
    }

    if (cameraMakeRoom) {
        const double zoom = fullWidth / state.view.w;
        const double z = std::clamp((zoom - 1.05) / 0.45, 0.0, 1.0);
        state.cameraScale = 1 - 0.24 * z * z * (3 - 2 * z);
    }
    state.caption = caption(seconds);
    if (showTitle)
        state.titleOpacity = seconds <= titleSeconds ? 1 : std::max(0.0, 1 - 2 * (seconds - titleSeconds));
    if (showEnd)
        state.endOpacity =
            std::clamp((seconds - (map.outputDuration() - endCardSeconds)) / endFade, 0.0, 1.0);
    if (clockOrigin) state.clock = std::max(0.0, source - *clockOrigin);
    return state;
}

bool Scene::pointerRests(double from, double to) const {
    if (!pointer) return true;
    constexpr double nearly = 2e-5; // far less than a pixel
    constexpr double fade = 1.0 / 512;
    const FrameState::Pointer a = pointer->state(from);
    const FrameState::Pointer b = pointer->state(to);
    return std::abs(a.x - b.x) < nearly && std::abs(a.y - b.y) < nearly &&
           std::abs(a.opacity - b.opacity) < fade;
}

std::optional<FrameState::Pill> Scene::pill(double source) const {
    const SpeedSegment* segment = map.segmentAt(source);
    if (!segment || segment->isCut() || segment->speed <= 1) return std::nullopt;

    FrameState::Pill pill;
    pill.speed = static_cast<std::int64_t>(std::min(segment->speed, 9e18));
    const bool waiting = segment->reason == SpeedSegment::Reason::idle ||
                         segment->reason == SpeedSegment::Reason::agentWorking;
    if (!waiting)
        pill.label = "fast-forward";
    else if (segment->length() >= namedWait)
        pill.label = "skipping " + clock(segment->length()) + " of waiting";
    else
        pill.label = "skipping the wait";
    pill.opacity = std::min(
        std::min(source - segment->start, segment->end - source) / segment->speed / overlayFade, 1.0);
    return pill;
}

std::optional<FrameState::Caption> Scene::caption(double seconds) const {
    for (std::size_t i = captions.size(); i-- > 0;) {
        const CaptionLayout::Line& line = captions[i];
        if (!(line.start <= seconds && seconds < line.end)) continue;
        FrameState::Caption caption;
        caption.line = static_cast<int>(i);
        for (std::size_t word = 0; word < line.words.size(); ++word)
            if (line.words[word].start <= seconds) caption.word = static_cast<int>(word);
        caption.opacity =
            std::min({(seconds - line.start) / overlayFade, (line.end - seconds) / overlayFade, 1.0});
        return caption;
    }
    return std::nullopt;
}

} // namespace RecordCore
