#include "RecordCore/Rendering/Wallpapers/Noise.h"

#include <array>
#include <cmath>

namespace RecordCore {

namespace {

/// Mixes the bits of an integer (the finalizer of MurmurHash3).
std::uint32_t scrambled(std::uint32_t h) {
    h ^= h >> 16;
    h *= 0x85EBCA6BU;
    h ^= h >> 13;
    h *= 0xC2B2AE35U;
    h ^= h >> 16;
    return h;
}

} // namespace

double Noise::at(double x, double y) const {
    // Sixteen directions, evenly spread.
    constexpr double a = 0.9238795325112867;
    constexpr double b = 0.3826834323650898;
    constexpr double c = 0.7071067811865476;
    static constexpr std::array<std::array<double, 2>, 16> directions{{{1, 0},
                                                                       {a, b},
                                                                       {c, c},
                                                                       {b, a},
                                                                       {0, 1},
                                                                       {-b, a},
                                                                       {-c, c},
                                                                       {-a, b},
                                                                       {-1, 0},
                                                                       {-a, -b},
                                                                       {-c, -c},
                                                                       {-b, -a},
                                                                       {0, -1},
                                                                       {b, -a},
                                                                       {c, -c},
                                                                       {a, -b}}};
    const double left = std::floor(x);
    const double top = std::floor(y);
    const double fx = x - left;
    const double fy = y - top;
    const auto corner = [&](int dx, int dy) {
        const auto column = static_cast<std::uint32_t>(static_cast<std::int32_t>(left) + dx);
        const auto row = static_cast<std::uint32_t>(static_cast<std::int32_t>(top) + dy);
        const auto& direction =
            directions[scrambled(seed ^ scrambled(column * 0x9E3779B9U ^ scrambled(row + 0x7F4A7C15U))) &
                       15U];
        return direction[0] * (fx - dx) + direction[1] * (fy - dy);
    };
    const auto eased = [](double t) { return t * t * t * (t * (t * 6 - 15) + 10); };
    const double sx = eased(fx);
    const double sy = eased(fy);
    const double upper = corner(0, 0) * (1 - sx) + corner(1, 0) * sx;
    const double lower = corner(0, 1) * (1 - sx) + corner(1, 1) * sx;
    return upper * (1 - sy) + lower * sy;
}

double Noise::octaves(double x, double y, int count, double fall) const {
    double sum = 0;
    double weight = 1;
    for (int i = 0; i < count; ++i) {
        sum += weight * at(x + 17.3 * i, y - 11.9 * i);
        weight *= fall;
        x *= 2;
        y *= 2;
    }
    return sum;
}

double Noise::pick(std::uint32_t n) const {
    return static_cast<double>(scrambled(seed * 0x9E3779B9U + scrambled(n + 1))) / 4294967296.0;
}

} // namespace RecordCore
