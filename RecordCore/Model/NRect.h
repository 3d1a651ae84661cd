#pragma once

#include <algorithm>

namespace RecordCore {

/// A rectangle in normalised coordinates: the whole source frame is (0, 0) to (1, 1), the origin is its
/// top-left corner and y grows downward. Plain value; equality is exact.
struct NRect {
    double x = 0;
    double y = 0;
    double w = 0;
    double h = 0;

    static constexpr NRect full() { return {0, 0, 1, 1}; }
    static constexpr NRect centered(double centerX, double centerY, double w, double h) {
        return {centerX - w * 0.5, centerY - h * 0.5, w, h};
    }

    constexpr double maxX() const { return x + w; }
    constexpr double maxY() const { return y + h; }
    constexpr double midX() const { return x + w * 0.5; }
    constexpr double midY() const { return y + h * 0.5; }

    /// True when `other` lies inside, forgiving 1e-9 on every side.
    constexpr bool contains(const NRect& other) const {
        constexpr double epsilon = 1e-9;
        return other.x >= x - epsilon && other.y >= y - epsilon && other.x + other.w <= x + w + epsilon &&
               other.y + other.h <= y + h + epsilon;
    }

    /// True when the point lies inside; every bound is inclusive and there is no tolerance.
    constexpr bool contains(double px, double py) const {
        return x <= px && px <= maxX() && y <= py && py <= maxY();
    }

    /// The smallest rectangle that holds both.
    constexpr NRect united(const NRect& other) const {
        const double left = std::min(x, other.x);
        const double top = std::min(y, other.y);
        return {left, top, std::max(x + w, other.x + other.w) - left,
                std::max(y + h, other.y + other.h) - top};
    }

    /// Scaled about its own centre; nothing is clamped.
    constexpr NRect scaled(double s) const {
        const double width = s * w;
        const double height = s * h;
        return {x + w * 0.5 - width * 0.5, y + h * 0.5 - height * 0.5, width, height};
    }

    /// Shrunk to at most the unit square and moved to lie inside it (never cut).
    constexpr NRect clampedToUnit() const {
        const double width = w > 1 ? 1 : w;
        const double height = h > 1 ? 1 : h;
        return {std::min(std::max(x, 0.0), 1 - width), std::min(std::max(y, 0.0), 1 - height), width, height};
    }

    constexpr bool operator==(const NRect&) const = default;
};

} // namespace RecordCore
