#include "RecordCore/Export/CostForecast.h"

#include <algorithm>
#include <cmath>

namespace RecordCore {

namespace {

// In bits of the recording. Measured on screen recordings: a moving view costs about an eighth of a key frame
// for every frame, nearly alike whether it moves by a tenth of a pixel or by fifty.
constexpr double motionShare = 0.12;
constexpr double slowShare = 0.6; ///< of that, where it moves by less than `slow`
constexpr double slow = 1.0 / 8;  ///< canvas pixels from frame to frame
constexpr double still = 1.0 / 64;
constexpr double keyShare = 1.4; ///< a key frame of the film beside one of the recording
constexpr double changeShare = 0.75;
constexpr double leastShare = 0.001; ///< pointers, badges
constexpr double fullWidth = 1920;   ///< canvas pixels in which the camera's motion is counted
constexpr double usualKey = 1e6;     ///< where the recording has no index

/// What a key frame of the recording takes at rising times, in between those that there are.
class KeySizes {
public:
    explicit KeySizes(const std::vector<VideoReader::Stored>& stored) {
        std::copy_if(stored.begin(), stored.end(), std::back_inserter(keys),
                     [](const VideoReader::Stored& frame) { return frame.key; });
    }

    double at(double time) {
        if (keys.empty()) return usualKey;
        while (next < keys.size() && keys[next].time <= time)
            ++next;
        if (next == 0) return keys.front().bits;
        if (next == keys.size()) return keys.back().bits;
        const VideoReader::Stored& a = keys[next - 1];
        const VideoReader::Stored& b = keys[next];
        return a.bits + (b.bits - a.bits) * (time - a.time) / (b.time - a.time);
    }

private:
    std::vector<VideoReader::Stored> keys;
    std::size_t next = 0;
};

/// By how much the edges of the view move, in canvas pixels.
double motion(const NRect& from, const NRect& to) {
    const double edges = std::max({std::abs(to.x - from.x), std::abs(to.x + to.w - from.x - from.w),
                                   std::abs(to.y - from.y), std::abs(to.y + to.h - from.y - from.h)});
    return edges / std::max(to.w, 1e-3) * fullWidth;
}

/// By how many steps of the quantiser the frame should differ. Measured as quality for the bits over whole
/// films: a fast move is coded anew in the next frame, the slow end of one stays.
int offsetFor(double moved, double changedShare) {
    if (moved >= 4) return 2;
    if (moved >= 1) return 1;
    if (moved >= 0.25) return 0;
    if (moved >= still) return -3;
    return changedShare > 0.03 ? 0 : changedShare > 0 ? -3 : -5;
}

} // namespace

std::vector<FrameForecast> costForecast(const Scene& scene, double fps,
                                        const std::vector<VideoReader::Stored>& stored, int keyInterval) {
    const std::int64_t count = scene.frameCount();
    std::vector<FrameForecast> frames;
    frames.reserve(static_cast<std::size_t>(count));
    KeySizes keys(stored);
    std::size_t next = 0;
    NRect before = scene.drawnView(0);
    for (std::int64_t i = 0; i < count; ++i) {
        const double seconds = static_cast<double>(i) / fps;
        const double source = scene.times().sourceTime(seconds);
        const NRect view = scene.drawnView(seconds);
        const double key = keys.at(source);
        const double moved = motion(before, view);
        double changed = 0;
        for (; next < stored.size() && stored[next].time <= source; ++next)
            if (!stored[next].key) changed += stored[next].bits;
        changed = std::min(changed * changeShare, key * keyShare);
        double cost = key * leastShare + changed;
        if (moved >= still) cost += key * motionShare * (moved < slow ? slowShare : 1);
        // Bits go about inversely with the quantiser's step.
        const int offset = offsetFor(moved, changed / std::max(key, 1.0));
        cost *= std::exp2(-offset / 6.0);
        if (i % std::max(keyInterval, 1) == 0) cost += key * keyShare;
        frames.push_back({static_cast<float>(cost), offset});
        before = view;
    }
    return frames;
}

} // namespace RecordCore
