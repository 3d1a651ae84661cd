#pragma once

#include <algorithm>

namespace RecordCore {

/// Decides when the next frame may be taken: at most `fps` a second, at least 0.9 of a frame's time after the
/// last. Frames follow the changes instead of a grid of their own (a grid would beat with a program that
/// draws as often as we take), so a frame that came late leaves the next ones a little credit to catch up.
/// Times in seconds.
class FramePacer {
public:
    explicit FramePacer(int fps) : interval(1.0 / fps) {}

    /// The earliest time at which a frame may be taken.
    double due() const { return std::max(last + 0.9 * interval, next - interval); }

    void taken(double time) {
        last = time;
        next = std::max(next, time) + interval;
    }

private:
    double interval;
    double last = -1e9;
    double next = -1e9; ///< when an evenly paced frame would be due
};

} // namespace RecordCore
