#include "RecordCore/Rendering/FloatPlane.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace RecordCore {

namespace {

/// Weights of a Gaussian at whole distances 0 … radius, which add up to 1 when mirrored.
std::vector<float> gaussian(double sigma) {
    const int radius = static_cast<int>(std::ceil(4 * sigma));
    std::vector<double> exact;
    double sum = 0;
    for (int i = 0; i <= radius; ++i) {
        // The integral over the sample, so that narrow blurs keep their width.
        const double scale = sigma * std::sqrt(2.0);
        exact.push_back(0.5 * (std::erf((i + 0.5) / scale) - std::erf((i - 0.5) / scale)));
        sum += (i == 0 ? 1 : 2) * exact.back();
    }
    std::vector<float> weights;
    for (const double weight : exact)
        weights.push_back(static_cast<float>(weight / sum));
    return weights;
}

void blurDirectly(FloatPlane& plane, double sigma) {
    const std::vector<float> weights = gaussian(sigma);
    const int radius = static_cast<int>(weights.size()) - 1;
    const int width = plane.width;
    const int height = plane.height;

    std::vector<float> line(static_cast<std::size_t>(width + 2 * radius));
    for (int y = 0; y < height; ++y) {
        float* samples = plane.row(y);
        std::fill(line.begin(), line.begin() + radius, samples[0]);
        std::copy(samples, samples + width, line.begin() + radius);
        std::fill(line.end() - radius, line.end(), samples[width - 1]);
        const float* middle = line.data() + radius;
        for (int x = 0; x < width; ++x)
            samples[x] = middle[x] * weights[0];
        for (int i = 1; i <= radius; ++i) {
            const float weight = weights[static_cast<std::size_t>(i)];
            for (int x = 0; x < width; ++x)
                samples[x] += weight * (middle[x - i] + middle[x + i]);
        }
    }

    // Columns in strips, so that a strip stays in the cache.
    constexpr int stripWidth = 64;
    std::vector<float> strip(static_cast<std::size_t>(height) * stripWidth);
    for (int left = 0; left < width; left += stripWidth) {
        const int count = std::min(stripWidth, width - left);
        for (int y = 0; y < height; ++y)
            std::copy_n(plane.row(y) + left, count,
                        strip.data() + static_cast<std::ptrdiff_t>(y) * stripWidth);
        for (int y = 0; y < height; ++y) {
            float* samples = plane.row(y) + left;
            for (int x = 0; x < count; ++x)
                samples[x] *= weights[0];
            for (int i = 1; i <= radius; ++i) {
                const float weight = weights[static_cast<std::size_t>(i)];
                const float* above =
                    strip.data() + static_cast<std::ptrdiff_t>(std::max(y - i, 0)) * stripWidth;
                const float* below =
                    strip.data() + static_cast<std::ptrdiff_t>(std::min(y + i, height - 1)) * stripWidth;
                for (int x = 0; x < count; ++x)
                    samples[x] += weight * (above[x] + below[x]);
            }
        }
    }
}

/// The mean of cells of `cell` × `cell` samples; the edge repeats to fill the last cells.
FloatPlane reduced(const FloatPlane& plane, int cell) {
    FloatPlane small((plane.width + cell - 1) / cell, (plane.height + cell - 1) / cell);
    const float share = 1.0F / static_cast<float>(cell * cell);
    for (int y = 0; y < small.height; ++y) {
        float* out = small.row(y);
        for (int i = 0; i < cell; ++i) {
            const float* in = plane.row(std::min(y * cell + i, plane.height - 1));
            const int whole = plane.width / cell;
            for (int x = 0; x < whole; ++x) {
                float sum = 0;
                for (int j = 0; j < cell; ++j)
                    sum += in[x * cell + j];
                out[x] += sum * share;
            }
            for (int x = whole; x < small.width; ++x) {
                float sum = 0;
                for (int j = 0; j < cell; ++j)
                    sum += in[std::min(x * cell + j, plane.width - 1)];
                out[x] += sum * share;
            }
        }
    }
    return small;
}

/// Cubic B-spline weights for a position `t` (0…1) between the middle two of four samples.
void splineWeights(float t, std::array<float, 4>& w) {
    const float s = 1 - t;
    w[0] = s * s * s / 6;
    w[1] = (3 * t * t * t - 6 * t * t + 4) / 6;
    w[2] = (3 * s * s * s - 6 * s * s + 4) / 6;
    w[3] = t * t * t / 6;
}

/// Fills `plane` from its reduced copy; the spline is smooth, so no cell shows.
void enlarge(const FloatPlane& small, int cell, FloatPlane& plane) {
    // The weights repeat from cell to cell.
    std::vector<std::array<float, 4>> weights(static_cast<std::size_t>(cell));
    std::vector<int> firsts(static_cast<std::size_t>(cell));
    for (int phase = 0; phase < cell; ++phase) {
        const float u = (static_cast<float>(phase) + 0.5F) / static_cast<float>(cell) - 0.5F;
        firsts[static_cast<std::size_t>(phase)] = static_cast<int>(std::floor(u)) - 1;
        splineWeights(u - std::floor(u), weights[static_cast<std::size_t>(phase)]);
    }
    // A line with its edges repeated, so that no place needs checking.
    std::vector<float> line(static_cast<std::size_t>(small.width) + 5);
    for (int y = 0; y < plane.height; ++y) {
        const std::size_t phaseY = static_cast<std::size_t>(y % cell);
        const int j = y / cell + firsts[phaseY];
        float* middle = line.data() + 2;
        std::fill(line.begin(), line.end(), 0.0F);
        for (int k = 0; k < 4; ++k) {
            const float weight = weights[phaseY][static_cast<std::size_t>(k)];
            const float* in = small.row(std::clamp(j + k, 0, small.height - 1));
            for (int x = 0; x < small.width; ++x)
                middle[x] += weight * in[x];
        }
        middle[-2] = middle[-1] = middle[0];
        for (int i = 0; i < 3; ++i)
            middle[small.width + i] = middle[small.width - 1];
        float* out = plane.row(y);
        for (int left = 0, base = 0; left < plane.width; left += cell, ++base) {
            const int count = std::min(cell, plane.width - left);
            for (int i = 0; i < count; ++i) {
                const std::array<float, 4>& w = weights[static_cast<std::size_t>(i)];
                const float* in = middle + base + firsts[static_cast<std::size_t>(i)];
                out[left + i] = w[0] * in[0] + w[1] * in[1] + w[2] * in[2] + w[3] * in[3];
            }
        }
    }
}

} // namespace

void FloatPlane::blur(double sigma) {
    if (width == 0 || height == 0 || !(sigma > 0.01)) return;
    constexpr double widestDirect = 3;
    if (sigma <= widestDirect) {
        blurDirectly(*this, sigma);
        return;
    }
    // Beyond the size of the plane a wider blur changes nothing that could be seen.
    const double limited = std::min(sigma, 4.0 * std::max(width, height));
    const int cell = static_cast<int>(std::ceil(limited / 3));
    FloatPlane small = reduced(*this, cell);
    // Averaging cells and enlarging by the spline blur too: their variances are taken off.
    const double relative = limited / cell;
    const double own = (1 - 1.0 / (static_cast<double>(cell) * cell)) / 12 + 1.0 / 3;
    blurDirectly(small, std::sqrt(std::max(relative * relative - own, 0.01)));
    enlarge(small, cell, *this);
}

} // namespace RecordCore
