#include "RecordCore/Capture/DriftResampler.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

namespace RecordCore {

namespace {

constexpr int taps = 48; // input samples that make one output sample
constexpr int half = taps / 2;
constexpr int phases = 256;     // places between two input samples; linear between these
constexpr double cutoff = 0.93; // of the Nyquist frequency
constexpr double kaiserBeta = 9;

/// Modified Bessel function of the first kind, order 0, by its power series.
double bessel0(double x) {
    double sum = 1;
    double term = 1;
    for (int k = 1; term > 1e-12 * sum; ++k) {
        term *= (x / (2 * k)) * (x / (2 * k));
        sum += term;
    }
    return sum;
}

/// The Kaiser-windowed sinc at every phase, each coefficient twice, as it meets interleaved samples; each
/// phase sums to 1 per channel. One phase more than there are places, so that interpolation needs no wrap.
struct Kernel {
    std::array<std::array<float, 2 * taps>, phases + 1> coefficients;

    Kernel() {
        for (std::size_t phase = 0; phase <= phases; ++phase) {
            const double fraction = static_cast<double>(phase) / phases;
            std::array<double, taps> h;
            double sum = 0;
            for (std::size_t tap = 0; tap < taps; ++tap) {
                const double distance = static_cast<double>(tap) - (half - 1) - fraction;
                const double x = std::numbers::pi * cutoff * distance;
                const double sinc = std::abs(x) < 1e-9 ? 1 : std::sin(x) / x;
                const double inside = std::max(1 - (distance / half) * (distance / half), 0.0);
                h[tap] = sinc * bessel0(kaiserBeta * std::sqrt(inside));
                sum += h[tap];
            }
            for (std::size_t i = 0; i < 2 * taps; ++i)
                coefficients[phase][i] = static_cast<float>(h[i / 2] / sum);
        }
    }
};

const Kernel& kernel() {
    static const Kernel shared;
    return shared;
}

} // namespace

DriftResampler::DriftResampler() {
    reset();
}

void DriftResampler::reset() {
    // Silence before the first sample stands in for the left half of the kernel.
    held.assign(static_cast<std::size_t>(2 * half), 0.0F);
    skip = 0;
    firstHeld = -half;
    next = 0;
    kernel();
}

void DriftResampler::push(std::span<const float> samples) {
    compact();
    held.insert(held.end(), samples.begin(), samples.end());
}

void DriftResampler::moveTo(double position) {
    next = std::max(next, position);
    compact();
}

/// Lets go of what no output needs any more; moves memory only when much has gathered.
void DriftResampler::compact() {
    const auto needed = static_cast<std::ptrdiff_t>(std::floor(next)) - half;
    const std::ptrdiff_t gone = std::clamp<std::ptrdiff_t>(needed - firstHeld, 0, heldFrames());
    skip += gone;
    firstHeld += gone;
    if (skip > heldFrames()) {
        held.erase(held.begin(), held.begin() + 2 * skip);
        skip = 0;
    }
}

std::size_t DriftResampler::read(double step, std::size_t frames, std::vector<float>& out) {
    const Kernel& table = kernel();
    const std::size_t old = out.size();
    out.resize(old + 2 * frames);
    float* to = out.data() + old;
    std::size_t done = 0;
    for (; done < frames; ++done) {
        const double whole = std::floor(next);
        const std::ptrdiff_t first = static_cast<std::ptrdiff_t>(whole) - (half - 1) - firstHeld;
        if (first + taps > heldFrames()) break;
        const double place = (next - whole) * phases;
        const auto phase = static_cast<std::size_t>(place);
        const float between = static_cast<float>(place - static_cast<double>(phase));
        const auto& a = table.coefficients[phase];
        const auto& b = table.coefficients[phase + 1];
        // Eight sums side by side, which the compiler keeps in vector registers.
        const float* in = held.data() + 2 * (skip + first);
        std::array<float, 8> sum{};
        for (std::size_t i = 0; i < 2 * taps; i += 8)
            for (std::size_t lane = 0; lane < 8; ++lane)
                sum[lane] += (a[i + lane] + between * (b[i + lane] - a[i + lane])) * in[i + lane];
        *to++ = (sum[0] + sum[2]) + (sum[4] + sum[6]);
        *to++ = (sum[1] + sum[3]) + (sum[5] + sum[7]);
        next += step;
    }
    out.resize(old + 2 * done);
    return done;
}

} // namespace RecordCore
