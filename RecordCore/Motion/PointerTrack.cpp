#include "RecordCore/Motion/PointerTrack.h"

#include "RecordCore/Motion/Camera.h"
#include "RecordCore/Motion/CameraPath.h"
#include "RecordCore/Planning/Sorted.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace RecordCore {

namespace {

constexpr double stillDistance = 0.0008; ///< moves up to this (|dx| + |dy|) don't count
constexpr double stiffness = 24;         ///< per second
constexpr double fadeRate = 9;           ///< per second
constexpr double idleSeconds = 2.0;
constexpr double rippleSeconds = 0.45;

/// Where the recorded pointer was at a source time and when it had last moved.
class RecordedPath {
public:
    explicit RecordedPath(const std::vector<InputLog::CursorSample>& samples) : samples(samples) {
        lastMoves.reserve(samples.size());
        lastMoves.push_back(0);
        for (std::size_t i = 1; i < samples.size(); ++i) {
            const double distance =
                std::abs(samples[i].x - samples[i - 1].x) + std::abs(samples[i].y - samples[i - 1].y);
            lastMoves.push_back(distance > stillDistance ? samples[i].t : lastMoves[i - 1]);
        }
    }

    struct Place {
        double x;
        double y;
        double lastMove;
    };

    Place at(double s) const {
        const auto after = std::upper_bound(samples.begin(), samples.end(), s,
                                            [](double time, const auto& sample) { return time < sample.t; });
        const std::size_t i =
            after == samples.begin() ? 0 : static_cast<std::size_t>(after - samples.begin()) - 1;
        const InputLog::CursorSample& a = samples[i];
        const InputLog::CursorSample& b = samples[std::min(i + 1, samples.size() - 1)];
        const double u = a.t == b.t ? 0 : std::clamp((s - a.t) / (b.t - a.t), 0.0, 1.0);
        return {a.x + (b.x - a.x) * u, a.y + (b.y - a.y) * u, lastMoves[i]};
    }

private:
    const std::vector<InputLog::CursorSample>& samples;
    std::vector<double> lastMoves;
};

} // namespace

std::optional<PointerTrack> PointerTrack::of(const std::optional<InputLog>& log, const TimeMap& map,
                                             const Project& project, double fps) {
    if (!log || log->cursorInVideo.value_or(true) || log->cursor.size() < 2) return std::nullopt;

    PointerTrack track;
    track.fps = fps;
    const Sorted<InputLog::CursorSample> samples(log->cursor, [](const auto& sample) { return sample.t; });
    const RecordedPath path(*samples);
    const double dt = 1 / fps;
    const double decay = std::exp(-stiffness * dt);
    const double fade = std::min(fadeRate / fps, 1.0);
    double opacity = 1;
    Spring x;
    Spring y;
    track.states.resize(frameTableSize(map.outputDuration(), fps));
    for (std::size_t i = 0; i < track.states.size(); ++i) {
        const double s = map.sourceTime(static_cast<double>(i) / fps);
        const RecordedPath::Place place = path.at(s);
        if (i == 0 || !project.cursorSmooth) {
            x.value = place.x;
            y.value = place.y;
        } else {
            x.step(place.x, stiffness, decay, dt);
            y.step(place.y, stiffness, decay, dt);
        }
        const double target = project.hideIdleCursor && s - place.lastMove > idleSeconds ? 0 : 1;
        opacity += fade * (target - opacity);
        track.states[i] = {x.value, y.value, opacity};
    }

    for (const InputLog::Event& event : log->events) {
        const bool click =
            event.kind == InputLog::Event::Kind::click || event.kind == InputLog::Event::Kind::rightClick;
        if (!click || !event.x || !event.y) continue;
        const SpeedSegment* segment = map.segmentHolding(event.t);
        if (segment && segment->isCut()) continue;
        track.clicks.push_back({map.outputTime(event.t), *event.x, *event.y});
    }
    track.clicksInOrder = std::is_sorted(track.clicks.begin(), track.clicks.end(),
                                         [](const Click& a, const Click& b) { return a.time < b.time; });
    return track;
}

FrameState::Pointer PointerTrack::state(double seconds) const {
    const double index = std::clamp(std::round(seconds * fps), 0.0, static_cast<double>(states.size() - 1));
    return states[static_cast<std::size_t>(index)];
}

std::vector<FrameState::Ripple> PointerTrack::ripples(double seconds) const {
    auto first = clicks.begin();
    auto last = clicks.end();
    if (clicksInOrder) {
        // A little more than can be seen; the exact test follows.
        const auto byTime = [](const Click& click, double time) { return click.time < time; };
        first = std::lower_bound(clicks.begin(), clicks.end(), seconds - 2 * rippleSeconds, byTime);
        last = std::lower_bound(first, clicks.end(), seconds + rippleSeconds, byTime);
    }
    std::vector<FrameState::Ripple> ripples;
    for (; first != last; ++first) {
        const double age = seconds - first->time;
        if (0 <= age && age < rippleSeconds) ripples.push_back({first->x, first->y, age / rippleSeconds});
    }
    return ripples;
}

} // namespace RecordCore
