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
    Mask& mask = masks.emplace_back();
    if (previous.empty())
        mask.assign(static_cast<std::size_t>(cols) * rows, 0);
    else
        changeMask(current, previous, cols, rows, mask);
    previous = current;
    return true;
}

std::vector<ActivitySample> LiveActivity::samples() const {
    return summarize(times, masks, cols, rows, window);
}

} // namespace RecordCore
