#pragma once
// Elementary functions for shading: plain arithmetic only, so that every CPU and C library gives the same
// bits, and without branches, so that loops become vectors.

#include <algorithm>
#include <bit>
#include <cstdint>

namespace RecordCore::ShadeMath {

/// The nearest whole number, for |x| below 2^22: adding 1.5 · 2^23 leaves no room for a fraction.
inline float nearest(float x) {
    constexpr float shift = 12582912.0F;
    return (x + shift) - shift;
}

/// e^x; 0 below about −87, not meant above 80. Relative error below 3e-6.
inline float exponential(float x) {
    const float t = std::max(x * 1.44269504F, -126.0F);
    const float whole = nearest(t);
    const float f = t - whole;
    // Taylor series of 2^f for |f| ≤ 1/2.
    const float part =
        1 + f * (0.693147181F +
                 f * (0.240226507F + f * (0.0555041087F + f * (0.00961812911F + f * 0.00133335581F))));
    return part * std::bit_cast<float>((static_cast<std::int32_t>(whole) + 127) << 23);
}

/// e^(−x²)
inline float bell(float x) {
    return exponential(-x * x);
}

/// The sine of 2πx, for |x| below 10^5. Error below 2e-4.
inline float sineOfTurns(float x) {
    const float f = x - nearest(x);                       // −1/2 … 1/2
    const float folded = f * (8 - 16 * (f < 0 ? -f : f)); // a parabola through the right zeros and peaks
    return folded * (0.775F + 0.225F * (folded < 0 ? -folded : folded));
}

inline float unit(float x) {
    return std::min(std::max(x, 0.0F), 1.0F);
}

/// 0 below `low`, 1 above `high`, with level ends.
inline float smooth(float low, float high, float x) {
    const float t = unit((x - low) / (high - low));
    return t * t * (3 - 2 * t);
}

inline float mix(float a, float b, float t) {
    return a + (b - a) * t;
}

/// The sine and cosine of an angle in turns, in double: a Taylor series after folding to an eighth.
double sine(double turns);
double cosine(double turns);

/// The cube root.
double cubeRoot(double x);

} // namespace RecordCore::ShadeMath
