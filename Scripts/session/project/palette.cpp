#include "palette.h"
#include <algorithm>
#include <cmath>

Color pick(const Palette& palette, double depth)
{
    if (depth >= 1) return {0.03, 0.02, 0.04};
    const double place = std::pow(depth, 0.7) * (palette.size() - 1);
    const auto i = std::min<std::size_t>(std::size_t(place), palette.size() - 2);
    const double t = place - double(i);
    const Color &a = palette[i], &b = palette[i + 1];
    return {std::lerp(a.r, b.r, t), std::lerp(a.g, b.g, t), std::lerp(a.b, b.b, t)};
}
