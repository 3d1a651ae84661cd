#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace RecordCore {

/// Changes how long sound lasts and keeps its pitch. 48 kHz stereo, interleaved floats.
class TimeStretcher {
public:
    virtual ~TimeStretcher() = default;

    /// Stretches `input` to exactly `outputFrames` frames. One call is one continuous stretch of sound.
    virtual std::vector<float> stretch(std::span<const float> input, std::int64_t outputFrames) = 0;

    /// Makes a stretch that is under way, and every later one, return soon; what it returns is then of no
    /// use. From any thread.
    void interrupt() { interrupted = true; }

protected:
    std::atomic<bool> interrupted{false};
};

} // namespace RecordCore
