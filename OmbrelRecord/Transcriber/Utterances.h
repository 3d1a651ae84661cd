#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace OmbrelRecord {

/// A stretch of speech in 16 kHz sound, in samples.
struct Utterance {
    std::size_t begin = 0;
    std::size_t end = 0;
    bool operator==(const Utterance&) const = default;
};

/// Finds where somebody speaks, so that a recogniser gets one breath of speech at a time: stretches louder
/// than the background of this sound, with a little silence left on both sides; in order, without overlap,
/// none longer than `longest` seconds (cut where it is quietest). Clicks too short for speech are left out.
std::vector<Utterance> findUtterances(std::span<const float> sound, double longest = 12);

/// How loud speech is in this sound: the level that its loudest half second exceeds, as root mean square of
/// 10 ms, 0…1. 0 for silence.
double speechLevel(std::span<const float> sound);

} // namespace OmbrelRecord
