#pragma once

#include <cstdint>
#include <span>

namespace RecordCore {

inline constexpr int soundRate = 48000; ///< samples per second of all sound inside the engine
inline constexpr int soundChannels = 2; ///< interleaved left and right

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
