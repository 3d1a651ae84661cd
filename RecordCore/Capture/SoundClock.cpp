#include "RecordCore/Capture/SoundClock.h"

#include "RecordCore/Media/SoundReader.h"

#include <algorithm>
#include <cmath>

namespace RecordCore {

namespace {

constexpr double settleSeconds = 0.4;    // measurements of this span make the first offset
constexpr double jumpOffset = 0.040;     // measurements further off than this, all to one side, …
constexpr double jumpSeconds = 0.4;      // … for this long mean that samples were lost, not jitter
constexpr double maxDrift = 0.01;        // no device is further off
constexpr double firstDrift = 300e-6;    // what is expected of a device not heard before
constexpr double leastNoise = 0.5e-3;    // standard deviation of a measurement at the very best
constexpr double driftWander = 1e-6;     // how much the drift may change in a second (temperature)
constexpr double offsetWander = 0.05e-3; // and the offset, beyond the drift

double squared(double v) {
    return v * v;
}

} // namespace

void SoundClock::restart() {
    ready = false;
    pending.clear();
}

void SoundClock::observe(double position, double time) {
    const double x = position / soundRate;
    if (!ready) {
        pending.push_back({x, time - x});
        if (x - pending.front().x >= settleSeconds) settle();
        return;
    }

    const double dx = std::max(x - at, 0.0);
    offset = predictedOffset(x);
    at = x;
    varOffset += dx * (2 * covariance + dx * varDrift) + squared(offsetWander) * dx;
    covariance += dx * varDrift;
    varDrift += squared(driftWander) * dx;

    const double innovation = (time - x) - offset;
    if (std::abs(innovation) > jumpOffset) {
        // A wild value on its own says nothing; many to the same side say that samples were lost.
        if (!pending.empty() && (innovation > 0) != (pending.back().offset > offset)) pending.clear();
        pending.push_back({x, time - x});
        if (x - pending.front().x >= jumpSeconds) jump();
        return;
    }
    pending.clear();

    // What is merely unlikely pulls no more than three standard deviations would.
    const double limit = 3 * std::sqrt(varOffset + noise);
    const double clipped = std::clamp(innovation, -limit, limit);
    noise += 0.01 * (std::max(squared(clipped), squared(leastNoise)) - noise);
    const double spread = varOffset + noise;
    const double gainOffset = varOffset / spread;
    const double gainDrift = covariance / spread;
    offset += gainOffset * clipped;
    drift = std::clamp(drift + gainDrift * clipped, -maxDrift, maxDrift);
    varDrift -= gainDrift * covariance;
    covariance -= gainOffset * covariance;
    varOffset -= gainOffset * varOffset;
}

void SoundClock::settleNow() {
    if (!ready && !pending.empty()) settle();
}

/// The median of the measured offsets is the first offset: it shrugs off wild values among them.
void SoundClock::settle() {
    std::vector<double> offsets;
    offsets.reserve(pending.size());
    const double last = pending.back().x;
    for (const Measurement& m : pending)
        offsets.push_back(m.offset + drift * (last - m.x));
    const auto middle = offsets.begin() + static_cast<std::ptrdiff_t>(offsets.size() / 2);
    std::nth_element(offsets.begin(), middle, offsets.end());
    offset = *middle;
    for (double& o : offsets)
        o = std::abs(o - offset);
    std::nth_element(offsets.begin(), middle, offsets.end());
    const double deviation = 1.4826 * *middle; // of a normal distribution with this median deviation
    at = last;
    noise = std::max(squared(deviation), squared(leastNoise));
    varOffset = noise * 1.57 / static_cast<double>(offsets.size()) + squared(1e-3);
    covariance = 0;
    varDrift = squared(driftKnown ? firstDrift / 3 : firstDrift);
    driftKnown = true;
    pending.clear();
    ready = true;
}

void SoundClock::jump() {
    const double keptDrift = varDrift;
    const double keptNoise = noise;
    settle();
    varDrift = keptDrift; // it is the same device
    noise = std::max(noise, keptNoise);
}

double SoundClock::timeAt(double position) const {
    const double x = position / soundRate;
    return x + predictedOffset(x);
}

} // namespace RecordCore
