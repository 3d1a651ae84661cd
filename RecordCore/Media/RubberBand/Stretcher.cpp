#include "RecordCore/Media/RubberBand/Stretcher.h"

#include "RecordCore/Media/SoundReader.h"

#include <rubberband/RubberBandStretcher.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>

namespace RecordCore::RubberBand {

namespace {

constexpr double slowest = 0.5; // input seconds per output second
constexpr double fastest = 4.0;
constexpr std::size_t blockSize = 8192; // frames handed to the library at a time
constexpr std::int64_t grain = 2880;    // frames: 60 ms, half of it overlapping each neighbour

/// Fills `output` from the library, whole or in part; returns how many frames it got.
class Stretcher final : public TimeStretcher {
public:
    std::vector<float> stretch(std::span<const float> input, std::int64_t outputFrames) override {
        std::vector<float> output(static_cast<std::size_t>(std::max<std::int64_t>(outputFrames, 0)) *
                                  soundChannels);
        const auto inputFrames = static_cast<std::int64_t>(input.size()) / soundChannels;
        if (outputFrames <= 0 || inputFrames <= 0) return output;
        const double speed = static_cast<double>(inputFrames) / static_cast<double>(outputFrames);
        if (inputFrames == outputFrames)
            std::copy(input.begin(), input.end(), output.begin());
        else if (speed >= slowest && speed <= fastest)
            smooth(input, output, speed);
        else
            grains(input, output, speed);
        return output;
    }

private:
    void smooth(std::span<const float> input, std::vector<float>& output, double speed) {
        using Library = ::RubberBand::RubberBandStretcher;
        Library library(soundRate, soundChannels,
                        Library::OptionProcessOffline | Library::OptionEngineFiner |
                            Library::OptionThreadingNever | Library::OptionChannelsTogether,
                        1 / speed);
        const std::size_t frames = input.size() / soundChannels;
        library.setExpectedInputDuration(frames);
        library.setMaxProcessSize(blockSize);
        std::array<std::vector<float>, soundChannels> channels;
        std::array<float*, soundChannels> pointers{};
        for (std::size_t i = 0; i < soundChannels; ++i) {
            channels[i].resize(blockSize);
            pointers[i] = channels[i].data();
        }
        const auto load = [&](std::size_t start) {
            const std::size_t count = std::min(blockSize, frames - start);
            for (std::size_t i = 0; i < count; ++i)
                for (std::size_t channel = 0; channel < soundChannels; ++channel)
                    channels[channel][i] = input[(start + i) * soundChannels + channel];
            return count;
        };
        for (std::size_t start = 0; start < frames && !interrupted; start += blockSize) {
            const std::size_t count = load(start);
            library.study(pointers.data(), count, start + count == frames);
        }
        std::size_t written = 0;
        const std::size_t wanted = output.size() / soundChannels;
        const auto retrieve = [&] {
            while (true) {
                const int available = library.available();
                if (available <= 0) return;
                const std::size_t count = library.retrieve(
                    pointers.data(), std::min(blockSize, static_cast<std::size_t>(available)));
                if (count == 0) return;
                for (std::size_t i = 0; i < count && written < wanted; ++i, ++written)
                    for (std::size_t channel = 0; channel < soundChannels; ++channel)
                        output[written * soundChannels + channel] = channels[channel][i];
            }
        };
        for (std::size_t start = 0; start < frames && !interrupted; start += blockSize) {
            const std::size_t count = load(start);
            library.process(pointers.data(), count, start + count == frames);
            retrieve();
        }
    }

    /// Grains with raised-cosine edges, each taken from where its middle belongs, so that nothing drifts.
    void grains(std::span<const float> input, std::vector<float>& output, double speed) {
        const auto inputFrames = static_cast<std::int64_t>(input.size()) / soundChannels;
        const auto outputFrames = static_cast<std::int64_t>(output.size()) / soundChannels;
        const std::int64_t hop = grain / 2;
        for (std::int64_t centre = 0, number = 0; centre < outputFrames + hop; centre += hop, ++number) {
            // When grains overlap in the input too, they are shifted a little, always alike, so that their
            // rate does not become a tone.
            const std::int64_t scatter = speed < 1 ? (number * 7919) % 601 - 300 : 0;
            const std::int64_t middle = std::llround(static_cast<double>(centre) * speed) + scatter;
            for (std::int64_t i = -hop; i < hop; ++i) {
                const std::int64_t to = centre + i;
                if (to < 0 || to >= outputFrames) continue;
                const std::int64_t from = std::clamp<std::int64_t>(middle + i, 0, inputFrames - 1);
                const double window = 0.5 + 0.5 * std::cos(std::numbers::pi * static_cast<double>(i) /
                                                           static_cast<double>(hop));
                for (std::int64_t channel = 0; channel < soundChannels; ++channel)
                    output[static_cast<std::size_t>(to * soundChannels + channel)] +=
                        static_cast<float>(window) *
                        input[static_cast<std::size_t>(from * soundChannels + channel)];
            }
        }
    }
};

} // namespace

std::unique_ptr<TimeStretcher> makeStretcher() {
    return std::make_unique<Stretcher>();
}

} // namespace RecordCore::RubberBand
