#pragma once

#include "RecordCore/Model/Backdrop.h"

namespace RecordCore {

/// The colour a fill or stroke is drawn in; `alpha` 0 is fully transparent.
struct Ink {
    Rgb color;
    double alpha = 1;
    static constexpr Ink gray(double value, double alpha = 1) { return {{value, value, value}, alpha}; }
};

} // namespace RecordCore
