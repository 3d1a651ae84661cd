#pragma once

#include "RecordCore/Model/Backdrop.h"

namespace RecordCore {

/// Conversions between gamma-encoded R'G'B' (0…1) and 8-bit video-range Y'CbCr after ITU-R BT.709-6,
/// items 3.2 to 3.4 (Kr = 0.2126, Kb = 0.0722). The samples are left as fractions of a step.
namespace Bt709 {

inline constexpr double kr = 0.2126;
inline constexpr double kg = 0.7152;
inline constexpr double kb = 0.0722;

template <typename Number>
struct Samples {
    Number y;
    Number cb;
    Number cr;
};

template <typename Number>
constexpr Samples<Number> fromRgb(Number r, Number g, Number b) {
    const Number luma =
        static_cast<Number>(kr) * r + static_cast<Number>(kg) * g + static_cast<Number>(kb) * b;
    return {static_cast<Number>(16) + static_cast<Number>(219) * luma,
            static_cast<Number>(128) + static_cast<Number>(224 / (2 * (1 - kb))) * (b - luma),
            static_cast<Number>(128) + static_cast<Number>(224 / (2 * (1 - kr))) * (r - luma)};
}

constexpr Samples<double> fromRgb(const Rgb& color) {
    return fromRgb(color.r, color.g, color.b);
}

/// Not limited to 0…1.
constexpr Rgb toRgb(double y, double cb, double cr) {
    const double luma = (y - 16) / 219;
    const double blue = luma + (cb - 128) * (2 * (1 - kb) / 224);
    const double red = luma + (cr - 128) * (2 * (1 - kr) / 224);
    return {red, (luma - kr * red - kb * blue) / kg, blue};
}

} // namespace Bt709

} // namespace RecordCore
