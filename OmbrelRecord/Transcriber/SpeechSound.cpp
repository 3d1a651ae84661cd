#include "OmbrelRecord/Transcriber/SpeechSound.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace OmbrelRecord::SpeechSound {

namespace {

constexpr int factor = RecordCore::soundRate / rate;
constexpr int reach = 100; ///< taps on either side of the middle one

/// A sinc cut off at 7.8 kHz under a Kaiser window with β = 7.857, which makes the side lobes −80 dB and, at
/// this length, the slope 1.2 kHz wide (Kaiser's design formulas, as in Oppenheim and Schafer, section 7.5).
/// What folds back across 8 kHz lands above 7.6 kHz, where no recogniser listens.
std::vector<float> lowPass() {
    const auto bessel = [](double x) { // I0 by its power series
        double sum = 1;
        double term = 1;
        for (int k = 1; term > sum * 1e-17; ++k) {
            term *= (x / (2 * k)) * (x / (2 * k));
            sum += term;
        }
        return sum;
    };
    constexpr double beta = 7.857;
    constexpr double cutoff = 7800.0 / RecordCore::soundRate; // cycles per sample
    std::vector<double> taps;
    double sum = 0;
    for (int i = -reach; i <= reach; ++i) {
        const double x = 2 * cutoff * i;
        const double sinc = i == 0 ? 1 : std::sin(std::numbers::pi * x) / (std::numbers::pi * x);
        const double r = static_cast<double>(i) / reach;
        taps.push_back(sinc * bessel(beta * std::sqrt(1 - r * r)));
        sum += taps.back();
    }
    std::vector<float> out;
    for (const double tap : taps)
        out.push_back(static_cast<float>(tap / sum));
    return out;
}

} // namespace

std::vector<float> read(RecordCore::SoundReader& track) {
    static const std::vector<float> taps = lowPass();
    constexpr std::int64_t blockOut = 4096;

    const std::int64_t length = std::max<std::int64_t>(0, (track.end() + factor - 1) / factor);
    std::vector<float> out(static_cast<std::size_t>(length));
    // Each block is read with the filter's reach on both sides; the part that it shares with the block
    // before is kept, so that the track is only ever read forward. Before 0 there is silence.
    std::vector<float> mono(reach, 0.0F);
    std::vector<float> stereo;
    std::int64_t position = 0;
    const auto append = [&](std::int64_t frames) {
        stereo.resize(static_cast<std::size_t>(frames * RecordCore::soundChannels));
        track.read(position, stereo);
        for (std::size_t i = 0; i < stereo.size(); i += 2)
            mono.push_back((stereo[i] + stereo[i + 1]) / 2);
        position += frames;
    };
    append(reach);
    for (std::int64_t at = 0; at < length; at += blockOut) {
        const std::int64_t count = std::min(blockOut, length - at);
        append(count * factor);
        for (std::int64_t i = 0; i < count; ++i) {
            const float* from = mono.data() + i * factor;
            float sum = 0;
            for (std::size_t k = 0; k < taps.size(); ++k)
                sum += taps[k] * from[k];
            out[static_cast<std::size_t>(at + i)] = sum;
        }
        mono.erase(mono.begin(), mono.begin() + count * factor);
    }
    return out;
}

std::vector<std::int16_t> quantized(std::span<const float> samples, float gain) {
    std::vector<std::int16_t> out;
    out.reserve(samples.size());
    for (const float sample : samples)
        out.push_back(static_cast<std::int16_t>(
            std::lround(std::clamp(sample * gain * 32768.0F, -32768.0F, 32767.0F))));
    return out;
}

} // namespace OmbrelRecord::SpeechSound
