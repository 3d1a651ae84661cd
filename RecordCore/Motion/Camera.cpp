#include "RecordCore/Motion/Camera.h"

#include <algorithm>
#include <cmath>

namespace RecordCore {

Camera Camera::resting(const NRect& start, double baseW, double baseH, double stiffness) {
    Camera camera;
    camera.stiffness = stiffness;
    camera.centerX.value = start.midX();
    camera.centerY.value = start.midY();
    camera.logZoom.value = std::log(baseW / start.w);
    camera.baseW = baseW;
    camera.baseH = baseH;
    return camera;
}

NRect Camera::step(const NRect& target, double dt) {
    const double decay = std::exp(-stiffness * dt);
    centerX.step(target.midX(), stiffness, decay, dt);
    centerY.step(target.midY(), stiffness, decay, dt);
    logZoom.step(std::log(baseW / target.w), stiffness, decay, dt);
    return current();
}

NRect Camera::current() const {
    const double zoom = std::exp(logZoom.value);
    const double w = baseW / zoom;
    const double h = baseH / zoom;
    const double x = std::max(centerX.value - w / 2, 0.0);
    const double y = std::max(centerY.value - h / 2, 0.0);
    const double width = std::min(w, 1.0);
    const double height = std::min(h, 1.0);
    return {std::min(x, 1 - width), std::min(y, 1 - height), width, height};
}

} // namespace RecordCore
