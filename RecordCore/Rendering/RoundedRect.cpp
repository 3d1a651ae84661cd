#include "RecordCore/Rendering/RoundedRect.h"

#include <algorithm>
#include <cmath>

namespace RecordCore {

RoundedRect RoundedRect::make(CanvasRect rect, double radius) {
    const double most = std::max(std::min(rect.width, rect.height) / 2, 0.0);
    return {rect, std::isnan(radius) ? 0 : std::clamp(radius, 0.0, most)};
}

RoundedRect RoundedRect::grown(double margin) const {
    return make({rect.x - margin, rect.y - margin, rect.width + 2 * margin, rect.height + 2 * margin},
                radius + margin);
}

double RoundedRect::coverage(int x, int y) const {
    const double left = std::max<double>(x, rect.x);
    const double right = std::min<double>(x + 1, rect.maxX());
    const double top = std::max<double>(y, rect.y);
    const double bottom = std::min<double>(y + 1, rect.maxY());
    if (left >= right || top >= bottom) return 0;

    // Away from the corners the covered part is a rectangle.
    const bool besideLeft = left < rect.x + radius;
    const bool besideRight = right > rect.maxX() - radius;
    const bool besideTop = top < rect.y + radius;
    const bool besideBottom = bottom > rect.maxY() - radius;
    if (!((besideLeft || besideRight) && (besideTop || besideBottom))) return (right - left) * (bottom - top);

    // A pixel that the arc does not cross needs no sampling.
    {
        const double dx = std::max({rect.x + radius - (x + 0.5), x + 0.5 - (rect.maxX() - radius), 0.0});
        const double dy = std::max({rect.y + radius - (y + 0.5), y + 0.5 - (rect.maxY() - radius), 0.0});
        const double distance = std::sqrt(dx * dx + dy * dy);
        constexpr double reach = 0.7072; // half a pixel's diagonal
        if (distance - reach >= radius) return 0;
        if (distance + reach <= radius && right - left == 1 && bottom - top == 1) return 1;
    }

    constexpr int grid = 16;
    int inside = 0;
    for (int j = 0; j < grid; ++j) {
        const double py = y + (j + 0.5) / grid;
        if (py < rect.y || py >= rect.maxY()) continue;
        const double dy = std::max({rect.y + radius - py, py - (rect.maxY() - radius), 0.0});
        for (int i = 0; i < grid; ++i) {
            const double px = x + (i + 0.5) / grid;
            if (px < rect.x || px >= rect.maxX()) continue;
            const double dx = std::max({rect.x + radius - px, px - (rect.maxX() - radius), 0.0});
            if (dx * dx + dy * dy <= radius * radius) ++inside;
        }
    }
    return static_cast<double>(inside) / (grid * grid);
}

bool RoundedRect::covers(int x0, int y0, int x1, int y1) const {
    if (x0 < rect.x || y0 < rect.y || x1 > rect.maxX() || y1 > rect.maxY()) return false;
    const double dx = std::max({rect.x + radius - x0, x1 - (rect.maxX() - radius), 0.0});
    const double dy = std::max({rect.y + radius - y0, y1 - (rect.maxY() - radius), 0.0});
    return dx * dx + dy * dy <= radius * radius;
}

FloatPlane RoundedRect::mask(int left, int top, int width, int height) const {
    FloatPlane plane(width, height);
    const int fromY =
        std::clamp(static_cast<int>(std::floor(std::clamp(rect.y - top, -1.0, height + 0.0))), 0, height);
    const int toY =
        std::clamp(static_cast<int>(std::ceil(std::clamp(rect.maxY() - top, -1.0, height + 0.0))), 0, height);
    const int fromX =
        std::clamp(static_cast<int>(std::floor(std::clamp(rect.x - left, -1.0, width + 0.0))), 0, width);
    const int toX =
        std::clamp(static_cast<int>(std::ceil(std::clamp(rect.maxX() - left, -1.0, width + 0.0))), 0, width);
    for (int y = fromY; y < toY; ++y) {
        float* samples = plane.row(y);
        int x = fromX;
        while (x < toX) {
            // The wholly covered run in the middle of a row needs no sampling.
            const int step = 64;
            if (x + step <= toX && covers(left + x, top + y, left + x + step, top + y + 1)) {
                std::fill_n(samples + x, step, 1.0F);
                x += step;
            } else {
                samples[x] = static_cast<float>(coverage(left + x, top + y));
                ++x;
            }
        }
    }
    return plane;
}

} // namespace RecordCore
