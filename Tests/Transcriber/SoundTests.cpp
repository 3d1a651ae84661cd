#include "OmbrelRecord/Transcriber/SpeechSound.h"
#include "OmbrelRecord/Transcriber/Utterances.h"
#include "Tests/Transcriber/MemorySound.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

using namespace OmbrelRecord;

namespace {

double sine(double frequency, double seconds) {
    return std::sin(2 * std::numbers::pi * frequency * seconds);
}

/// 16 kHz: faint noise with a loud tone of syllable rhythm in each stretch (seconds).
std::vector<float> speechLike(double length, const std::vector<std::pair<double, double>>& stretches) {
    std::vector<float> sound(static_cast<std::size_t>(length * SpeechSound::rate));
    std::uint32_t state = 7;
    for (std::size_t i = 0; i < sound.size(); ++i) {
        state = state * 1664525U + 1013904223U;
        sound[i] = static_cast<float>(static_cast<double>(state >> 8) / (1 << 23) - 1) * 0.002F;
        const double t = static_cast<double>(i) / SpeechSound::rate;
        for (const auto& [begin, end] : stretches)
            if (t >= begin && t < end)
                sound[i] += static_cast<float>(0.2 * sine(700, t) * (0.6 + 0.4 * sine(4, t - begin)));
    }
    return sound;
}

double seconds(std::size_t sample) {
    return static_cast<double>(sample) / SpeechSound::rate;
}

} // namespace

TEST(SpeechSound, keepsTimeAndSpeechAndNothingAbove) {
    struct Case {
        double frequency;
        double gain; ///< expected
        double tolerance;
    };
    // 9.2 kHz and up would fold back below 6.8 kHz, where recognisers listen.
    for (const Case& c : {Case{100, 1, 0.001}, Case{1000, 1, 0.001}, Case{6800, 1, 0.001},
                          Case{9200, 0, 0.001}, Case{15000, 0, 0.001}, Case{20000, 0, 0.001}}) {
        SCOPED_TRACE(c.frequency);
        // Longer than one block and no multiple of it; right is left turned down, so that both count.
        MemorySound track(48000 + 1001, [&](std::int64_t i, int channel) {
            return 0.5 * (channel == 0 ? 1 : 0.5) * sine(c.frequency, static_cast<double>(i) / 48000);
        });
        const std::vector<float> sound = SpeechSound::read(track);
        ASSERT_EQ(sound.size(), (48000U + 1001 + 2) / 3);
        double worst = 0;
        for (std::size_t i = 50; i < sound.size() - 50; ++i)
            worst = std::max(worst, std::abs(static_cast<double>(sound[i]) -
                                             c.gain * 0.375 * sine(c.frequency, seconds(i))));
        EXPECT_LT(worst, c.tolerance);
    }
    MemorySound nothing(0, [](std::int64_t, int) { return 1.0; });
    EXPECT_TRUE(SpeechSound::read(nothing).empty());
}

TEST(Utterances, areWhatIsSpoken) {
    struct Case {
        const char* what;
        double length;
        std::vector<std::pair<double, double>> spoken;
        std::vector<std::pair<double, double>> expected; ///< with the margins
    };
    const std::vector<Case> cases{
        {"nothing", 5, {}, {}},
        {"one stretch", 5, {{1, 3}}, {{0.8, 3.2}}},
        {"a short pause stays inside", 6, {{1, 2}, {2.25, 4}}, {{0.8, 4.2}}},
        {"a long pause divides", 8, {{1, 2}, {3, 5}}, {{0.8, 2.2}, {2.8, 5.2}}},
        {"margins do not overlap", 8, {{1, 2}, {2.375, 5}}, {{0.8, 2.19}, {2.19, 5.2}}},
        {"from edge to edge", 4, {{0, 1}, {2, 4}}, {{0, 1.2}, {1.8, 4}}},
        {"a click is no speech", 5, {{1, 1.03}, {3, 4}}, {{2.8, 4.2}}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const auto found = findUtterances(speechLike(c.length, c.spoken));
        ASSERT_EQ(found.size(), c.expected.size());
        for (std::size_t i = 0; i < found.size(); ++i) {
            EXPECT_NEAR(seconds(found[i].begin), c.expected[i].first, 0.03);
            EXPECT_NEAR(seconds(found[i].end), c.expected[i].second, 0.03);
            EXPECT_GE(found[i].begin, i == 0 ? 0 : found[i - 1].end);
        }
    }
    EXPECT_TRUE(findUtterances(std::vector<float>(SpeechSound::rate * 3)).empty()) << "digital silence";
    EXPECT_TRUE(findUtterances({}).empty());
}

TEST(Utterances, areCutWhereItIsQuietest) {
    // 18 s without a real pause, but with a gap of 0.25 s at 8 s.
    const auto sound = speechLike(20, {{1, 8}, {8.25, 19}});
    const auto found = findUtterances(sound, 12);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_NEAR(seconds(found[0].end), 8.125, 0.1);
    EXPECT_EQ(found[0].end, found[1].begin);
    for (const Utterance& utterance : findUtterances(sound, 3))
        EXPECT_LE(seconds(utterance.end - utterance.begin), 3.0);
}
