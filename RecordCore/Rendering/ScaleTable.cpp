#include "RecordCore/Rendering/ScaleTable.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace RecordCore {

namespace {

/// More input samples than this are not weighed for one output sample.
constexpr int mostTaps = 256;

/// The Lanczos window of three lobes, read from a table with linear interpolation: the error stays below
/// a twentieth of a weight's unit, and a moving camera makes thousands of weights for every frame.
class Lanczos3 {
public:
    Lanczos3() {
        for (int i = 0; i <= 3 * density; ++i) {
            const double t = std::numbers::pi * i / density;
            values[static_cast<std::size_t>(i)] = i == 0 ? 1 : 3 * std::sin(t) * std::sin(t / 3) / (t * t);
        }
        values[3 * density] = values[3 * density + 1] = 0;
    }

    double operator()(double x) const {
        const double place = std::abs(x) * density;
        if (!(place < 3 * density)) return 0;
        const int i = static_cast<int>(place);
        const double low = values[static_cast<std::size_t>(i)];
        return low + (values[static_cast<std::size_t>(i) + 1] - low) * (place - i);
    }

private:
    static constexpr int density = 1024;
    std::array<double, 3 * density + 2> values{};
};

const Lanczos3& lanczos3() {
    static const Lanczos3 table;
    return table;
}

double cubic(double x) {
    x = std::abs(x);
    if (x >= 2) return 0;
    if (x >= 1) return ((-0.5 * x + 2.5) * x - 4) * x + 2;
    return (1.5 * x - 2.5) * x * x + 1;
}

} // namespace

void ScaleTable::make(double a, double b, int size, int begin, int end) {
    const double ratio = std::abs(a);
    const bool reduces = ratio * 0.999 > 1;
    double width = reduces ? ratio : 1;
    const double support = reduces ? 3 : 2;
    int span = static_cast<int>(std::ceil(std::min(2 * support * width, 1e6))) + 1;
    if (!reduces) span = 4;
    if (span > mostTaps) {
        // The kernel of a huge reduction is narrowed to what the limit can weigh.
        width = (mostTaps - 1) / (2 * support);
        span = mostTaps;
    }
    span = std::min(span, std::max(size, 1));

    firstOutput = begin;
    tapCount = span;
    padded = span <= 4 ? 4 : (span + 7) / 8 * 8;
    const std::size_t count = static_cast<std::size_t>((std::max(end - begin, 0) + 7) / 8 * 8);
    first.resize(count);
    values.assign(count * static_cast<std::size_t>(padded), 0);
    scratch.resize(static_cast<std::size_t>(span));

    const Lanczos3& window = lanczos3();
    for (std::size_t i = 0; i < count; ++i) {
        const double center = a * (begin + static_cast<double>(i) + 0.5) + b;
        const double limited = std::clamp(center, -1e6, size + 1e6);
        // Input sample j has its centre at j + 0.5.
        const double lowest = limited - 0.5 - support * width;
        const int from = static_cast<int>(std::floor(lowest)) + 1;
        const int reach = static_cast<int>(std::floor(limited - 0.5 + support * width));
        const int start = std::clamp(from, 0, size - span);
        first[i] = start;
        std::fill(scratch.begin(), scratch.end(), 0.0);
        double sum = 0;
        for (int j = from; j <= reach; ++j) {
            const double distance = (j + 0.5 - limited) / width;
            const double weight = reduces ? window(distance) : cubic(distance);
            // What lies beyond the edge repeats the edge sample: its weight goes there.
            const int place = std::clamp(std::clamp(j, 0, size - 1) - start, 0, span - 1);
            scratch[static_cast<std::size_t>(place)] += weight;
            sum += weight;
        }
        std::int16_t* out = values.data() + i * static_cast<std::size_t>(padded);
        if (!(std::abs(sum) > 1e-9)) {
            out[std::clamp(static_cast<int>(limited) - start, 0, span - 1)] = unit;
            continue;
        }
        int total = 0;
        int largest = 0;
        for (int t = 0; t < span; ++t) {
            const int weight =
                static_cast<int>(std::lround(scratch[static_cast<std::size_t>(t)] / sum * unit));
            out[t] = static_cast<std::int16_t>(std::clamp(weight, -unit, unit));
            total += out[t];
            if (out[t] > out[largest]) largest = t;
        }
        // Rounding must not change flat areas: the weights add up to the unit exactly.
        out[largest] = static_cast<std::int16_t>(out[largest] + unit - total);
    }

    // In the order of the column kernel, eight taps at a time.
    constexpr std::array<std::size_t, 8> ofEight{0, 4, 1, 5, 2, 6, 3, 7};
    constexpr std::array<std::size_t, 8> ofFour{0, 2, 4, 6, 1, 3, 5, 7};
    const auto& order = padded == 4 ? ofFour : ofEight;
    const int together = std::min(padded, 8);
    grouped.resize(values.size());
    std::int16_t* to = grouped.data();
    for (std::size_t group = 0; group < count; group += 8)
        for (int tap = 0; tap < padded; tap += together)
            for (const std::size_t output : order)
                to = std::copy_n(values.data() + (group + output) * static_cast<std::size_t>(padded) + tap,
                                 together, to);
}

ScaleTable::Span ScaleTable::inputs(int from, int to) const {
    Span span{1 << 30, 0};
    // Starts run in one direction, but which one depends on whether the picture is mirrored.
    for (const int output : {from, to - 1}) {
        const int low = start(output);
        span.low = std::min(span.low, low);
        span.high = std::max(span.high, low + tapCount);
    }
    return span;
}

} // namespace RecordCore
