#include "RecordCore/Export/WorkForecast.h"

#include <algorithm>

namespace RecordCore {

namespace {

// Milliseconds, measured on films of screen recordings.
constexpr double standing = 0.3;     ///< a frame that equals the one before
constexpr double redrawn = 10;       ///< the camera moves: composed and encoded from edge to edge
constexpr double changed = 6;        ///< something in the recording changes
constexpr double pointerMoved = 5;   ///< only the pointer moves: composing is nothing, encoding still a frame
constexpr double decoded = 1;        ///< each frame of the recording, shown or not,
constexpr double perBit = 5e-5;      ///< and each of its bits
constexpr double perNewBit = 1.2e-4; ///< what is new must be encoded again,
constexpr double mostNew = 15;       ///< though not more than all of a frame

} // namespace

WorkForecast::WorkForecast(const Scene& scene, double fps, const std::vector<VideoReader::Stored>& stored) {
    const std::int64_t count = scene.frameCount();
    work.reserve(static_cast<std::size_t>(count));
    std::size_t next = 0;
    NRect before = scene.drawnView(0);
    for (std::int64_t i = 0; i < count; ++i) {
        const double seconds = static_cast<double>(i) / fps;
        const double source = scene.times().sourceTime(seconds);
        const NRect view = scene.drawnView(seconds);
        double reading = 0;
        double news = 0; // bits
        for (; next < stored.size() && stored[next].time <= source; ++next) {
            reading += decoded + perBit * stored[next].bits;
            if (!stored[next].key) news += stored[next].bits;
        }
        double cost = standing;
        if (i == 0 || view != before)
            cost = redrawn;
        else if (reading > 0)
            cost = changed;
        else if (!scene.pointerRests(static_cast<double>(i - 1) / fps, seconds))
            cost = pointerMoved;
        cost += reading + std::min(perNewBit * news, mostNew);
        work.push_back(static_cast<float>(cost));
        sum += static_cast<double>(work.back());
        before = view;
    }
}

} // namespace RecordCore
