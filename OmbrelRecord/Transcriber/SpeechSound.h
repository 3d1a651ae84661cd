#pragma once

#include "RecordCore/Media/SoundReader.h"

#include <span>
#include <vector>

namespace OmbrelRecord {

/// Sound as recognisers take it: 16 kHz, one channel.
namespace SpeechSound {

inline constexpr int rate = 16000;

/// The whole of a track, both channels averaged, low-passed at 7.8 kHz and decimated: sample i stands at
/// i / 16000 s exactly. 4 bytes for each sample: meant for pieces of a minute.
std::vector<float> read(RecordCore::SoundReader& track);

/// As 16-bit samples, with `gain` applied and the tops clipped.
std::vector<std::int16_t> quantized(std::span<const float> samples, float gain);

} // namespace SpeechSound
} // namespace OmbrelRecord
