#pragma once

#include <cstddef>
#include <vector>

namespace RecordCore {

/// One component of a picture in preparation, in floating point. A plain value, not synchronised.
struct FloatPlane {
    int width = 0;
    int height = 0;
    std::vector<float> samples;

    FloatPlane() = default;
    FloatPlane(int width, int height, float value = 0) :
        width(width), height(height),
        samples(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), value) {}

    float* row(int y) { return samples.data() + static_cast<std::ptrdiff_t>(y) * width; }
    const float* row(int y) const { return samples.data() + static_cast<std::ptrdiff_t>(y) * width; }

    /// Gaussian blur with that standard deviation in samples; beyond the edges the edge samples repeat.
    /// A wide blur is computed on a reduced copy, so the time does not grow with sigma.
    void blur(double sigma);
};

} // namespace RecordCore
