#pragma once

#include "RecordCore/Media/StreamDescription.h"

#include <span>

namespace RecordCore {

/// Encodes 48 kHz stereo (interleaved floats, −1…1) as AAC. The first sample given is sample 0 of the track:
/// packets carry pts that already account for the encoder's delay (the first is −primingSamples).
/// One thread at a time. Throws RecordingError.
class SoundEncoder {
public:
    virtual ~SoundEncoder() = default;

    virtual const StreamDescription& description() const = 0;
    /// Any number of frames.
    virtual void encode(std::span<const float> samples) = 0;
    virtual void finish() = 0;
};

} // namespace RecordCore
