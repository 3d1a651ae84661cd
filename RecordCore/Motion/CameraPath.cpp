#include "RecordCore/Motion/CameraPath.h"

#include "RecordCore/Motion/Camera.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace RecordCore {

namespace {

/// A time this near to a frame's, in frames, is the frame's.
constexpr double sameFrame = 1e-6;
/// Canvas pixels from frame to frame: slower than this is rest. A camera then is near enough to its place to
/// take it.
constexpr double restSpeed = 1.0 / 512;

NRect between(const NRect& a, const NRect& b, double u) {
    return {a.x + (b.x - a.x) * u, a.y + (b.y - a.y) * u, a.w + (b.w - a.w) * u, a.h + (b.h - a.h) * u};
}

/// The edges of a view in canvas pixels of another one.
struct Edges {
    std::array<double, 4> at;

    Edges(const NRect& view, double pixelsAcross, double pixelsDown) :
        at{view.x * pixelsAcross, (view.x + view.w) * pixelsAcross, view.y * pixelsDown,
           (view.y + view.h) * pixelsDown} {}
    /// The largest distance of an edge; every point between the edges moves by less.
    double distance(const Edges& other) const {
        double most = 0;
        for (std::size_t i = 0; i < at.size(); ++i)
            most = std::max(most, std::abs(at[i] - other.at[i]));
        return most;
    }
    /// What is not a number is not near.
    bool near(const Edges& other) const {
        for (std::size_t i = 0; i < at.size(); ++i)
            if (!(std::abs(at[i] - other.at[i]) <= SettledPath::tolerance)) return false;
        return true;
    }
};

/// What edges have passed through.
struct Range {
    Edges low, high;

    void add(const Edges& edges) {
        for (std::size_t i = 0; i < edges.at.size(); ++i) {
            low.at[i] = std::min(low.at[i], edges.at[i]);
            high.at[i] = std::max(high.at[i], edges.at[i]);
        }
    }
    bool near(const Edges& edges) const { return low.near(edges) && high.near(edges); }
};

} // namespace

std::size_t frameTableSize(double outputDuration, double fps) {
    return static_cast<std::size_t>(std::max(1.0, std::ceil(fps * outputDuration) + 1));
}

CameraPath CameraPath::of(const Plan& plan, double fps, double stiffness) {
    return of(plan, TimeMap(plan), fps, stiffness);
}

CameraPath CameraPath::of(const Plan& plan, const TimeMap& map, double fps, double stiffness) {
    const std::size_t count = frameTableSize(map.outputDuration(), fps);
    CameraPath path{fps, std::vector<NRect>(count)};
    Camera camera = Camera::resting(map.viewAt(0), plan.baseW, plan.baseH, stiffness);
    for (std::size_t i = 0; i < count; ++i) {
        const double source = map.sourceTime(static_cast<double>(i) / fps);
        path.views[i] = camera.step(map.viewAt(source), 1 / fps);
    }
    return path;
}

NRect CameraPath::view(double seconds) const {
    const double f = std::max(0.0, seconds * fps);
    const std::size_t last = views.size() - 1;
    const std::size_t i = f >= static_cast<double>(last) ? last : static_cast<std::size_t>(f);
    const double u = f - static_cast<double>(i);
    return between(views[i], views[std::min(i + 1, last)], u);
}

SettledPath::SettledPath(const CameraPath& path, double width, double height) {
    const std::vector<NRect>& views = path.views;
    anchors.resize(views.size());
    for (std::size_t first = 0; first < views.size();) {
        const double across = width / views[first].w;
        const double down = height / views[first].h;
        const auto edges = [&](std::size_t i) { return Edges(views[i], across, down); };
        const auto speed = [&](std::size_t i) {
            return i + 1 < views.size() ? edges(i).distance(edges(i + 1)) : 0.0;
        };

        // Of the frames that could stand for all from `first` up to themselves, the slowest, and of equals
        // the latest: that is where the camera rests, or comes nearest to it.
        std::size_t anchor = first;
        Edges chosen = edges(first);
        Range passed{chosen, chosen};
        double slowest = std::numeric_limits<double>::infinity();
        for (std::size_t i = first; i < views.size(); ++i) {
            const Edges here = edges(i);
            passed.add(here);
            if (!passed.near(here)) break;
            if (speed(i) <= slowest) {
                slowest = speed(i);
                anchor = i;
                chosen = here;
            }
        }
        // A camera that has come to rest does so in its very place: that is a picture of its own.
        std::size_t end = anchor + 1;
        while (end < views.size() && edges(end).near(chosen) &&
               (slowest <= restSpeed || speed(end) > restSpeed))
            ++end;
        std::fill(anchors.begin() + static_cast<std::ptrdiff_t>(first),
                  anchors.begin() + static_cast<std::ptrdiff_t>(end), static_cast<std::uint32_t>(anchor));
        first = end;
    }
}

NRect SettledPath::view(const CameraPath& path, double seconds) const {
    const double last = static_cast<double>(anchors.size() - 1);
    const double f = std::clamp(seconds * path.fps, 0.0, last);
    const double nearest = std::round(f);
    const double frame = std::abs(f - nearest) < sameFrame ? nearest : std::floor(f);
    const auto i = static_cast<std::size_t>(frame);
    const NRect& here = path.views[anchors[i]];
    if (frame == nearest && f <= nearest + sameFrame) return here;
    const NRect& next = path.views[anchors[std::min(i + 1, anchors.size() - 1)]];
    return between(here, next, f - frame);
}

} // namespace RecordCore
