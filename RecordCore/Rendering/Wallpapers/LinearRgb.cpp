#include "RecordCore/Rendering/Wallpapers/LinearRgb.h"

#include "RecordCore/Rendering/Wallpapers/ShadeMath.h"

#include <algorithm>
#include <cmath>

namespace RecordCore {

namespace {

/// sRGB's decoding curve (IEC 61966-2-1) by arithmetic: x^2.4 = x² · x^0.4, the fifth root by Newton's rule.
float decoded(std::uint32_t code) {
    const double value = static_cast<double>(code & 0xFFU) / 255;
    if (value <= 0.04045) return static_cast<float>(value / 12.92);
    const double x = (value + 0.055) / 1.055;
    double root = 0.2 + 0.8 * x; // of x, fifth
    for (int i = 0; i < 30; ++i)
        root -= (root - x / (root * root * root * root)) / 5;
    return static_cast<float>(x * x * root * root);
}

} // namespace

LinearRgb LinearRgb::hex(std::uint32_t code) {
    return {decoded(code >> 16), decoded(code >> 8), decoded(code)};
}

Oklab Oklab::of(const LinearRgb& tint) {
    const double r = tint.r;
    const double g = tint.g;
    const double b = tint.b;
    const double l = ShadeMath::cubeRoot(0.4122214708 * r + 0.5363325363 * g + 0.0514459929 * b);
    const double m = ShadeMath::cubeRoot(0.2119034982 * r + 0.6806995451 * g + 0.1073969566 * b);
    const double s = ShadeMath::cubeRoot(0.0883024619 * r + 0.2817188376 * g + 0.6299787005 * b);
    return {0.2104542553 * l + 0.7936177850 * m - 0.0040720468 * s,
            1.9779984951 * l - 2.4285922050 * m + 0.4505937099 * s,
            0.0259040371 * l + 0.7827717662 * m - 0.8086757660 * s};
}

LinearRgb Oklab::tint() const {
    const double l0 = L + 0.3963377774 * a + 0.2158037573 * b;
    const double m0 = L - 0.1055613458 * a - 0.0638541728 * b;
    const double s0 = L - 0.0894841775 * a - 1.2914855480 * b;
    const double l = l0 * l0 * l0;
    const double m = m0 * m0 * m0;
    const double s = s0 * s0 * s0;
    const auto lit = [](double value) { return static_cast<float>(std::max(value, 0.0)); };
    return {lit(4.0767416621 * l - 3.3077115913 * m + 0.2309699292 * s),
            lit(-1.2684380046 * l + 2.6097574011 * m - 0.3413193965 * s),
            lit(-0.0041960863 * l - 0.7034186147 * m + 1.7076147010 * s)};
}

LinearRgb mixed(const LinearRgb& from, const LinearRgb& to, double share) {
    const Oklab x = Oklab::of(from);
    const Oklab y = Oklab::of(to);
    return Oklab{x.L + (y.L - x.L) * share, x.a + (y.a - x.a) * share, x.b + (y.b - x.b) * share}.tint();
}

Ramp::Ramp(const std::vector<Stop>& stops) {
    for (int i = 0; i < steps + 2; ++i) {
        const double at = std::min(static_cast<double>(i) / steps, 1.0);
        std::size_t next = 0;
        while (next < stops.size() && stops[next].at < at)
            ++next;
        LinearRgb& out = table[static_cast<std::size_t>(i)];
        if (next == 0)
            out = stops.front().tint;
        else if (next == stops.size())
            out = stops.back().tint;
        else
            out = mixed(stops[next - 1].tint, stops[next].tint,
                        (at - stops[next - 1].at) / (stops[next].at - stops[next - 1].at));
    }
}

LinearRgb Ramp::at(float place) const {
    const float where = ShadeMath::unit(place) * steps;
    const std::size_t i = static_cast<std::size_t>(where);
    const float f = where - static_cast<float>(i);
    const LinearRgb& low = table[i];
    const LinearRgb& high = table[i + 1];
    return {low.r + (high.r - low.r) * f, low.g + (high.g - low.g) * f, low.b + (high.b - low.b) * f};
}

void Ramp::apply(const float* places, int count, float* r, float* g, float* b) const {
    for (int x = 0; x < count; ++x) {
        const LinearRgb tint = at(places[x]);
        r[x] = tint.r;
        g[x] = tint.g;
        b[x] = tint.b;
    }
}

void encode(float* samples, int count) {
    // The power 1/2.4 from square roots, fitted over 0…1.
    for (int x = 0; x < count; ++x) {
        const float light = ShadeMath::unit(samples[x]);
        const float s1 = std::sqrt(light);
        const float s2 = std::sqrt(s1);
        const float s3 = std::sqrt(s2);
        const float curve = 0.662002687F * s1 + 0.684122060F * s2 - 0.323583601F * s3 - 0.0225411470F * light;
        const float line = 12.92F * light;
        samples[x] = ShadeMath::unit(light < 0.0031308F ? line : curve);
    }
}

} // namespace RecordCore
