#include "RecordCore/Motion/CameraPath.h"

#include "RecordCore/Motion/Camera.h"

#include <algorithm>
#include <cmath>

namespace RecordCore {

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
    const NRect& a = views[i];
    const NRect& b = views[std::min(i + 1, last)];
    return {a.x + (b.x - a.x) * u, a.y + (b.y - a.y) * u, a.w + (b.w - a.w) * u, a.h + (b.h - a.h) * u};
}

} // namespace RecordCore
