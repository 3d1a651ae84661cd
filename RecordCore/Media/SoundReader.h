#pragma once

#include <cmath>
#include <cstdint>
#include <span>

namespace RecordCore {

inline constexpr int soundRate = 48000; ///< samples per second of all sound inside the engine
inline constexpr int soundChannels = 2; ///< interleaved left and right

/// A sample that can be computed with. Files and devices may hold what is no number, which would silence
/// everything that is made of it, or make an encoder give up; it counts as silence. Sound is never louder
/// than four times full level.
inline float usableSample(float sample) {
    constexpr float loudest = 4;
    if (std::abs(sample) <= loudest) return sample;
    return std::isnan(sample) ? 0 : std::copysign(loudest, sample);
}

/// Reads one sound track as 48 kHz stereo floats, interleaved, on the time axis of the file's video track
/// (position 0 is the video's first frame). One thread at a time.
class SoundReader {
public:
    virtual ~SoundReader() = default;

    /// One past the last sample position that holds sound.
    virtual std::int64_t end() const = 0;

    /// Fills `out` (2 floats per position) with the sound from `position` on; silence where there is none.
    /// Reading forward is cheap; going back seeks. Throws RecordingError when the file cannot be read.
    virtual void read(std::int64_t position, std::span<float> out) = 0;
};

} // namespace RecordCore
