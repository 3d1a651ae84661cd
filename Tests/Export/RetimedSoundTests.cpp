#include "RecordCore/Export/RetimedSound.h"
#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"
#include "RecordCore/Media/RubberBand/Stretcher.h"
#include "Tests/Media/Clips.h"
#include "Tests/Support/TemporaryFolder.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <fstream>
#include <functional>
#include <limits>
#include <numbers>

using namespace RecordCore;
using Reason = SpeedSegment::Reason;

namespace {

Plan planOf(std::vector<SpeedSegment> segments) {
    Plan plan;
    plan.source.duration = segments.empty() ? 0 : segments.back().end;
    plan.segments = std::move(segments);
    return plan;
}

/// Sound computed from a formula: exact at every position, however long.
class Generated final : public SoundReader {
public:
    Generated(double seconds, std::function<double(double)> signal) :
        last(std::llround(seconds * soundRate)), signal(std::move(signal)) {}
    std::int64_t end() const override { return last; }
    void read(std::int64_t position, std::span<float> out) override {
        for (std::size_t i = 0; i < out.size(); ++i) {
            const std::int64_t at = position + static_cast<std::int64_t>(i / soundChannels);
            out[i] =
                at < 0 || at >= last ? 0 : static_cast<float>(signal(static_cast<double>(at) / soundRate));
        }
    }

private:
    std::int64_t last;
    std::function<double(double)> signal;
};

std::unique_ptr<RetimedSound> retimed(const Plan& plan, std::vector<std::function<double(double)>> signals) {
    std::vector<std::unique_ptr<SoundReader>> tracks;
    for (auto& signal : signals)
        tracks.push_back(std::make_unique<Generated>(plan.source.duration, std::move(signal)));
    return std::make_unique<RetimedSound>(Timeline::composition(plan), std::move(tracks),
                                          RubberBand::makeStretcher());
}

std::vector<float> all(RetimedSound& sound) {
    std::vector<float> samples(static_cast<std::size_t>(sound.length()) * soundChannels);
    sound.read(0, samples);
    return samples;
}

double sine(double frequency, double time) {
    return std::sin(2 * std::numbers::pi * frequency * time);
}

/// Root mean square of the left channel between two output times, in decibels of full scale.
double level(const std::vector<float>& samples, double from, double to) {
    double sum = 0;
    double count = 0;
    for (auto i = static_cast<std::size_t>(from * soundRate); i < static_cast<std::size_t>(to * soundRate);
         ++i, ++count)
        sum += samples[i * 2] * samples[i * 2];
    return 10 * std::log10(sum / count + 1e-12);
}

// Every kind of speed, in an order in which each meets different neighbours; long enough that a sum of
// rounding errors would show at the end.
std::vector<SpeedSegment> everySpeed() {
    const double hold = 0.04 / 2.2;
    return {{0, 3.013, 1, Reason::normal},      {3.013, 7.1, 2, Reason::manual},
            {7.1, 9, 1, Reason::cut},           {9, 11.37, 1.5, Reason::manual},
            {11.37, 45.2, 1.7, Reason::manual}, {45.2, 47, 1, Reason::normal},
            {47, 87.01, 40, Reason::idle},      {87.01, 89.5, 1, Reason::normal},
            {89.5, 92, 0.75, Reason::manual},   {92, 94, 0.5, Reason::manual},
            {94, 96.001, 1, Reason::normal},    {96.001, 496.77, 23, Reason::agentWorking},
            {496.77, 499, 1, Reason::normal},   {499, 505, 3, Reason::manual},
            {505, 507, 0.4, Reason::manual},    {507, 509, 1, Reason::normal},
            {509, 509.04, hold, Reason::hold},  {509.04, 511, 1, Reason::normal}};
}

TEST(RetimedSound, StaysInStepAtEveryBoundary) {
    const Plan plan = planOf(everySpeed());
    // A short burst of sound shortly after each segment's beginning and shortly before its end, wherever one
    // can be heard, in a real file.
    std::vector<double> bursts;
    for (const SpeedSegment& segment : plan.segments) {
        if (segment.isCut() || segment.speed > 2 || segment.speed < 0.5) continue;
        bursts.push_back(segment.start + 0.2);
        bursts.push_back(segment.end - 0.2);
    }
    constexpr double length = 0.012;
    const auto signal = [&](double time) {
        const auto next = std::upper_bound(bursts.begin(), bursts.end(), time);
        if (next == bursts.begin()) return 0.0;
        const double since = time - *std::prev(next);
        return since < length ? 0.8 * sine(2000, since) * std::sin(std::numbers::pi * since / length) : 0.0;
    };
    const auto sound = retimed(plan, {signal});
    EXPECT_EQ(sound->length(), std::llround(plan.outputDuration() * soundRate));
    for (const double burst : bursts) {
        // The middle of the energy, which stretching keeps where it was.
        const double expected = plan.outputTime(burst + length / 2);
        const auto first = std::llround((expected - 0.06) * soundRate);
        std::vector<float> samples(static_cast<std::size_t>(0.12 * soundRate) * 2);
        sound->read(first, samples);
        double energy = 0;
        double moment = 0;
        for (std::size_t i = 0; i < samples.size(); i += 2) {
            const double power = samples[i] * samples[i];
            energy += power;
            moment += power * static_cast<double>(i / 2);
        }
        ASSERT_GT(energy, 1) << "the burst at " << burst << " is not heard";
        const double seen = (static_cast<double>(first) + moment / energy) / soundRate;
        EXPECT_NEAR(seen, expected, 0.010) << "source " << burst;
    }
}

TEST(RetimedSound, AnyBlockAndAnyOrderGiveTheSameSound) {
    const Plan plan = planOf({{0, 1.5, 1, Reason::normal},
                              {1.5, 14, 2.5, Reason::manual},
                              {14, 14.04, 0.04 / 2.2, Reason::hold},
                              {14.04, 43, 20, Reason::idle},
                              {43, 44, 1, Reason::normal}});
    const auto signal = [](double time) { return 0.4 * sine(300 + 10 * time, time) + 0.2 * sine(77, time); };
    const auto whole = all(*retimed(plan, {signal}));
    ASSERT_EQ(whole.size(), static_cast<std::size_t>(std::llround(plan.outputDuration() * soundRate)) * 2);
    const auto sound = retimed(plan, {signal});
    // Odd blocks from start to end, then places here and there, and beyond the end.
    for (std::int64_t at = 0, block = 1; at < sound->length(); at += block, block = block * 7 % 9973 + 1) {
        std::vector<float> part(static_cast<std::size_t>(block) * 2, 9.0F);
        sound->read(at, part);
        for (std::size_t i = 0; i < part.size(); ++i) {
            const std::size_t place = static_cast<std::size_t>(at) * 2 + i;
            ASSERT_EQ(part[i], place < whole.size() ? whole[place] : 0.0F) << place;
        }
    }
    for (const double time : {8.0, 3.0, 9.5, 0.0, 6.55}) {
        std::vector<float> part(2000);
        sound->read(std::llround(time * soundRate), part);
        const auto start = whole.begin() + std::llround(time * soundRate) * 2;
        EXPECT_TRUE(std::equal(part.begin(), part.end(), start)) << time;
    }
}

TEST(RetimedSound, JointsDoNotClick) {
    // Neighbouring samples of this tone differ by at most 0.029; a cut in the wave would by up to 1.
    const double step = 2 * std::numbers::pi * 440 / soundRate * 0.5;
    for (const double speed : {1.0, 0.75, 1.3, 2.0, 3.5, 6.0, 40.0, 0.04 / 2.2}) {
        const Plan plan = planOf({{0, 1.0013, 1, Reason::normal},
                                  {1.0013, 1.5, 1, Reason::cut},
                                  {1.5, 1.54 + speed, speed, Reason::manual},
                                  {1.54 + speed, 60, 1, Reason::normal}});
        const auto sound = retimed(plan, {[](double time) { return 0.5 * sine(440, time); }});
        std::vector<float> samples(static_cast<std::size_t>(soundRate) * 6 * 2);
        sound->read(0, samples);
        double largest = 0;
        for (std::size_t i = 4; i < samples.size(); i += 2)
            largest = std::max(largest, std::abs(static_cast<double>(samples[i]) - samples[i - 2]));
        EXPECT_LT(largest, 2.2 * step) << "speed " << speed;
        EXPECT_GT(largest, step * 0.9) << "there is a tone at all";
    }
}

TEST(RetimedSound, FallsToAQuietBedAndKeepsThePitch) {
    struct Case {
        double speed;
        double decibels; ///< against the source
    };
    // Down with the octave between twofold and fourfold speed.
    for (const auto& [speed, decibels] :
         {Case{1, 0}, Case{1.5, 0}, Case{2, 0}, Case{2.83, -12}, Case{4, -24}, Case{8, -24}, Case{40, -24},
          Case{0.5, 0}, Case{0.45, -24}, Case{0.04 / 2.2, -24}}) {
        const double seconds = 3 * speed;
        const Plan plan = planOf({{0, seconds, speed, Reason::manual}});
        const auto samples = all(*retimed(plan, {[](double time) { return 0.5 * sine(600, time); }}));
        ASSERT_EQ(samples.size(), 3U * soundRate * 2);
        const double source = 20 * std::log10(0.5 / std::sqrt(2.0));
        // Overlapping grains of a tone add up to somewhat less.
        EXPECT_NEAR(level(samples, 0.5, 2.5) - source, decibels, speed > 4 || speed < 0.5 ? 3.5 : 1) << speed;
        if (speed < 0.5 || speed > 2.5) continue;
        int crossings = 0;
        for (std::size_t i = soundRate / 2; i < std::size_t{soundRate} * 5 / 2; ++i)
            if (samples[i * 2] < 0 && samples[i * 2 + 2] >= 0) ++crossings;
        EXPECT_NEAR(crossings / 2.0, 600, 6) << speed;
    }
}

TEST(RetimedSound, MixesAllTracksWithoutClipping) {
    const Plan plan = planOf({{0, 1, 1, Reason::normal}});
    const auto one = [](double time) { return 0.3 * sine(500, time); };
    const auto other = [](double time) { return 0.3 * sine(500, time); };
    EXPECT_NEAR(level(all(*retimed(plan, {one, other})), 0.2, 0.8), 20 * std::log10(0.6 / std::sqrt(2.0)),
                0.2);
    const auto loud = [](double time) { return 0.95 * sine(500, time); };
    const auto samples = all(*retimed(plan, {loud, loud}));
    const float most = *std::max_element(samples.begin(), samples.end());
    EXPECT_LE(most, 1);
    EXPECT_GT(most, 0.9);
    EXPECT_EQ(retimed(planOf({}), {one})->length(), 0);
}

/// A real file, real readers: the sound's beginning, gaps and rate come out where they belong.
TEST(SoundReader, PutsEverySampleInItsPlace) {
    struct Case {
        const char* name;
        const char* codec;
        double exactness; ///< seconds
    };
    // One tick of 5 ms in every second, its number told by its pitch; the sound starts 0.25 s after the
    // picture.
    const std::string tracks =
        "-f lavfi -i color=s=64x48:r=25:d=6 -itsoffset 0.25 -f lavfi -i \"aevalsrc='0.7*lt(mod(t,1),0.005)*"
        "sin(2*PI*1000*t)':s=44100:d=5\" ";
    const TemporaryFolder folder;
    for (const Case& c : {Case{"pcm.mov", "pcm_s16le", 0.0002}, Case{"aac.mp4", "aac -b:a 192k", 0.001},
                          // ffmpeg writes this one 6 ms early, and reads it so as well.
                          Case{"opus.webm", "libopus -ar 48000", 0.008}, Case{"flac.mkv", "flac", 0.001}}) {
        const auto file = folder / c.name;
        ffmpeg(fmt::format("{} -c:v {} -c:a {} -ac 1 {}", tracks,
                           std::string(c.name) == "opus.webm" ? "libvpx -deadline realtime"
                                                              : "libx264 -preset ultrafast",
                           c.codec, file.string()));
        auto readers = FFmpeg::openSound(file);
        ASSERT_EQ(readers.size(), 1U) << c.name;
        SoundReader& reader = *readers[0];
        EXPECT_NEAR(static_cast<double>(reader.end()) / soundRate, 5.25, 0.03) << c.name;
        std::vector<float> whole(static_cast<std::size_t>(soundRate) * 6 * 2);
        reader.read(0, whole);
        for (int tick = 1; tick < 5; ++tick) {
            const double expected = tick + 0.25 + 0.0025;
            double energy = 0;
            double moment = 0;
            for (auto i = std::llround((expected - 0.05) * soundRate);
                 i < std::llround((expected + 0.05) * soundRate); ++i) {
                const double power =
                    whole[static_cast<std::size_t>(i) * 2] * whole[static_cast<std::size_t>(i) * 2];
                energy += power;
                moment += power * static_cast<double>(i);
            }
            ASSERT_GT(energy, 1) << c.name;
            EXPECT_NEAR(moment / energy / soundRate, expected, c.exactness) << c.name << " tick " << tick;
            // One channel comes out on both, as loud as it went in.
            float most = 0;
            for (auto i = std::llround(expected * soundRate) - 200;
                 i < std::llround(expected * soundRate) + 200; ++i) {
                most = std::max(most, std::abs(whole[static_cast<std::size_t>(i) * 2]));
                ASSERT_EQ(whole[static_cast<std::size_t>(i) * 2], whole[static_cast<std::size_t>(i) * 2 + 1]);
            }
            EXPECT_NEAR(most, 0.7, 0.12) << c.name;
        }
        // Anywhere in any order: what reading through gives (coarse clocks may round by a millisecond).
        const auto slack = static_cast<int>(c.exactness * soundRate);
        for (const double place : {4.2, 1.2, 3.24, 0.0, -0.1}) {
            std::vector<float> part(4800);
            reader.read(std::llround(place * soundRate), part);
            double best = 1e9;
            for (int shift = -slack; shift <= slack; ++shift) {
                double difference = 0;
                for (std::size_t i = 0; i < part.size(); i += 2) {
                    const auto at =
                        std::llround(place * soundRate) + shift + static_cast<std::int64_t>(i / 2);
                    const double expected = at < 0 ? 0 : whole[static_cast<std::size_t>(at) * 2];
                    difference += (part[i] - expected) * (part[i] - expected);
                }
                best = std::min(best, difference);
            }
            EXPECT_LT(best, 0.5) << c.name << " at " << place;
        }
    }
}

TEST(SoundReader, WhatIsNoNumberSilencesNothingElse) {
    const TemporaryFolder folder;
    std::vector<float> samples(soundRate * 2, 0.25F);
    constexpr std::array<float, 4> bad{std::numeric_limits<float>::quiet_NaN(),
                                       std::numeric_limits<float>::infinity(), -1e30F, 3};
    std::copy(bad.begin(), bad.end(), samples.begin() + 48000);
    std::ofstream(folder / "raw", std::ios::binary)
        .write(reinterpret_cast<const char*>(samples.data()),
               static_cast<std::streamsize>(samples.size() * sizeof(float)));
    ffmpeg(fmt::format("-f lavfi -i color=s=64x48:r=10:d=1 -f f32le -ar 48000 -ac 2 -i {} -c:v libx264 "
                       "-c:a pcm_f32le {}",
                       (folder / "raw").string(), (folder / "movie.mov").string()));
    std::vector<float> read(samples.size());
    FFmpeg::openSound(folder / "movie.mov").front()->read(0, read);
    std::copy_n(std::array<float, 4>{0, 4, -4, 3}.begin(), 4, samples.begin() + 48000);
    EXPECT_EQ(read, samples);

    // What comes from a device has passed no reader.
    std::copy(bad.begin(), bad.end(), samples.begin() + 48000);
    int packets = 0;
    const auto encoder = FFmpeg::makeSoundEncoder(192'000, [&](const Packet&) { ++packets; });
    encoder->encode(samples);
    encoder->finish();
    EXPECT_GE(packets, 47);
}

TEST(TimeStretcher, IsNotWaitedForOnceInterrupted) {
    std::vector<float> noise(48000);
    for (std::size_t i = 0; i < noise.size(); ++i)
        noise[i] = static_cast<float>((i * 7919) % 1000) / 1000 - 0.5F;
    const auto silent = [](const std::vector<float>& sound) {
        return std::all_of(sound.begin(), sound.end(), [](float sample) { return sample == 0; });
    };
    const auto stretcher = RubberBand::makeStretcher();
    EXPECT_FALSE(silent(stretcher->stretch(noise, 12000)));
    stretcher->interrupt();
    const std::vector<float> nothing = stretcher->stretch(noise, 12000);
    EXPECT_EQ(nothing.size(), 24000U);
    EXPECT_TRUE(silent(nothing)); // no part of it was worked on
}

} // namespace
