#include "OmbrelRecord/Transcriber/Utterances.h"

#include "OmbrelRecord/Transcriber/SpeechSound.h"

#include <algorithm>
#include <cmath>

namespace OmbrelRecord {

namespace {

constexpr std::size_t frameSamples = SpeechSound::rate / 100; ///< 10 ms
constexpr std::size_t loudFrames = 50;    ///< half a second: speech is judged by what so much of it exceeds
constexpr std::size_t shortestVoice = 6;  ///< frames; key clicks are shorter
constexpr std::size_t longestPause = 35;  ///< frames; silence that a stretch of speech may hold
constexpr std::size_t margin = 20;        ///< frames of silence left on either side
constexpr std::size_t shortestPart = 300; ///< frames; where too long a stretch is cut at the earliest
constexpr double quietest = -70;          ///< dB; nobody speaks below that

struct Stretch { ///< in frames
    std::size_t begin;
    std::size_t end;
};

/// Level of each frame in dB. Hum and rumble, which would hide the pauses, are damped by the usual
/// pre-emphasis of speech coding.
std::vector<double> levels(std::span<const float> sound) {
    std::vector<double> list;
    float before = 0;
    for (std::size_t at = 0; at + frameSamples <= sound.size(); at += frameSamples) {
        double power = 0;
        for (const float sample : sound.subspan(at, frameSamples)) {
            const double emphasised = static_cast<double>(sample) - 0.97 * static_cast<double>(before);
            power += emphasised * emphasised;
            before = sample;
        }
        list.push_back(10 * std::log10(power / frameSamples + 1e-10));
    }
    return list;
}

/// The level above which a frame counts as voice.
double threshold(std::vector<double> levels) {
    std::sort(levels.begin(), levels.end());
    const double floor = levels[levels.size() / 10];
    const double loud = levels[levels.size() - std::min(levels.size(), loudFrames)];
    return std::max(quietest, floor + std::clamp((loud - floor) * 0.3, 6.0, 15.0));
}

std::vector<Stretch> voicedStretches(const std::vector<double>& levels) {
    const double least = threshold(levels);
    std::vector<Stretch> runs;
    for (std::size_t i = 0; i < levels.size(); ++i) {
        if (levels[i] < least) continue;
        // One quiet frame inside a sound does not end it.
        if (!runs.empty() && i - runs.back().end <= 1)
            runs.back().end = i + 1;
        else
            runs.push_back({i, i + 1});
    }
    std::erase_if(runs, [](const Stretch& run) { return run.end - run.begin < shortestVoice; });

    std::vector<Stretch> joined;
    for (const Stretch& run : runs) {
        if (!joined.empty() && run.begin - joined.back().end <= longestPause)
            joined.back().end = run.end;
        else
            joined.push_back(run);
    }
    return joined;
}

/// Where to cut a stretch that is too long: the middle of its quietest 100 ms.
std::size_t quietPlace(const std::vector<double>& levels, std::size_t from, std::size_t to) {
    constexpr std::size_t window = 10;
    std::size_t best = to;
    double least = 0;
    for (std::size_t i = from; i + window <= to; ++i) {
        double sum = 0;
        for (std::size_t k = 0; k < window; ++k)
            sum += levels[i + k];
        if (best == to || sum < least) {
            best = i + window / 2;
            least = sum;
        }
    }
    return best;
}

} // namespace

std::vector<Utterance> findUtterances(std::span<const float> sound, double longest) {
    const std::vector<double> level = levels(sound);
    if (level.empty()) return {};
    const auto most = static_cast<std::size_t>(longest * 100);

    const std::vector<Stretch> voiced = voicedStretches(level);
    std::vector<Stretch> stretches = voiced;
    for (std::size_t i = 0; i < voiced.size(); ++i) {
        // What lies between two stretches is shared, what lies before the first and after the last is not.
        const std::size_t before = i == 0 ? voiced[i].begin : (voiced[i].begin - voiced[i - 1].end) / 2;
        const std::size_t after =
            i + 1 == voiced.size() ? level.size() - voiced[i].end : (voiced[i + 1].begin - voiced[i].end) / 2;
        stretches[i].begin -= std::min(margin, before);
        stretches[i].end += std::min(margin, after);
    }

    std::vector<Utterance> list;
    for (Stretch rest : stretches) {
        while (rest.end - rest.begin > most) {
            const std::size_t earliest = rest.begin + std::min(shortestPart, most / 2);
            const std::size_t cut = quietPlace(level, earliest, rest.begin + most);
            list.push_back({rest.begin * frameSamples, cut * frameSamples});
            rest.begin = cut;
        }
        list.push_back({rest.begin * frameSamples, rest.end * frameSamples});
    }
    return list;
}

double speechLevel(std::span<const float> sound) {
    std::vector<double> powers;
    for (std::size_t at = 0; at + frameSamples <= sound.size(); at += frameSamples) {
        double power = 0;
        for (const float sample : sound.subspan(at, frameSamples))
            power += static_cast<double>(sample) * static_cast<double>(sample);
        powers.push_back(power / frameSamples);
    }
    if (powers.empty()) return 0;
    std::sort(powers.begin(), powers.end());
    return std::sqrt(powers[powers.size() - std::min(powers.size(), loudFrames)]);
}

} // namespace OmbrelRecord
