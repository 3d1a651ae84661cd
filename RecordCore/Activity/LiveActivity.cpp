#include "RecordCore/Activity/LiveActivity.h"

#include <cstddef>

namespace RecordCore {

namespace {
using namespace ActivityAnalyzer;
constexpr int gridW = cols * points;
constexpr int gridH = rows * points;
constexpr double nearly = 0.000001;
} // namespace

LiveActivity::LiveActivity() : current(static_cast<std::size_t>(gridW) * gridH) {}

bool LiveActivity::wants(double t) const {
    return t + nearly >= nextT;
}

bool LiveActivity::add(const PlanarView& frame, double t) {
    return sample(frame, t);
}
bool LiveActivity::add(const BgraView& frame, double t) {
    return sample(frame, t);
}

template <typename View>
bool LiveActivity::sample(const View& frame, double t) {
    if (!wants(t)) return false;
    nextT = t + 1 / sampleFps;
    lumaGrid(frame, gridW, gridH, current);
    times.push_back(t);
    PackedMask& mask = masks.emplace_back();
    if (!previous.empty()) {
        changeMask(current, previous, cols, rows, scratch);
        for (std::size_t cell = 0; cell < scratch.size(); ++cell)
            mask[cell / cols] |= std::uint64_t{scratch[cell] != 0} << cell % cols;
    }
    previous = current;
    return true;
}

void LiveActivity::restore(double t, const PackedMask& mask) {
    nextT = t + 1 / sampleFps;
    times.push_back(t);
    masks.push_back(mask);
}

std::vector<ActivitySample> LiveActivity::samples() const {
    const auto unpack = [this](std::size_t index, Mask& mask) {
        const PackedMask& packed = masks[index];
        for (std::size_t cell = 0; cell < mask.size(); ++cell)
            mask[cell] = static_cast<std::uint8_t>(packed[cell / cols] >> cell % cols & 1);
    };
    return summarizeEach(times, unpack, cols, rows, window);
}

} // namespace RecordCore
