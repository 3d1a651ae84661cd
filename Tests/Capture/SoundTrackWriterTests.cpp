#include "RecordCore/Capture/SoundTrackWriter.h"
#include "RecordCore/Media/SoundReader.h"
#include "RecordCore/Model/RecordingError.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <random>

using namespace RecordCore;

namespace {

class ManualClock : public HostClock {
public:
    double now() const override { return time; }
    double time = 0;
};

constexpr double sawtooth = 64; // seconds

/// The sound of the simulated world says when it was made: left is the host time within 64 s as a ramp of 0
/// to 1 (which a resampler passes on unchanged), right is 1 where there is sound at all.
double phaseAt(double time) {
    return time - sawtooth * std::floor(time / sawtooth);
}
float soundAt(double time) {
    return static_cast<float>(phaseAt(time) / sawtooth);
}

/// A sound device with a clock of its own, heard through a service that tells times badly.
struct Device {
    std::function<double(double)> drift = [](double) { return 0.0; }; ///< seconds lost per second, over time
    double jitter = 0;     ///< standard deviation of the reported times, seconds
    double outliers = 0;   ///< share of reported times that are up to 150 ms too late
    double latency = 0.03; ///< seconds from hearing to delivery
    double heard = 0;      ///< host time of the next sample
    bool afterGap = true;
    std::mt19937 random{7};

    void deliver(SoundTrackWriter& track, ManualClock& clock, std::size_t frames = 960) {
        std::vector<float> samples;
        samples.reserve(2 * frames);
        const double start = heard;
        const double step = (1 + drift(start)) / soundRate;
        for (std::size_t i = 0; i < frames; ++i) {
            samples.push_back(soundAt(heard));
            samples.push_back(1);
            heard += step;
        }
        double reported = start + std::normal_distribution(0.0, 1.0)(random) * jitter;
        if (std::uniform_real_distribution(0.0, 1.0)(random) < outliers)
            reported += std::uniform_real_distribution(0.03, 0.15)(random);
        clock.time = std::max(clock.time, heard + latency);
        track.add({samples, reported, afterGap});
        afterGap = false;
    }
    void skip(double seconds) { heard += seconds; }
};

/// Checks the samples of a track as they come: how far sound is from where it belongs.
struct Listener {
    double origin = 0;
    std::int64_t frames = 0;
    std::int64_t silent = 0;
    double from = 0;      ///< seconds into the track
    double worst = 0;     ///< seconds, of all sound after `from`
    double late = 1e9;    ///< seconds into the track
    double worstLate = 0; ///< seconds, of all sound after `late`

    void operator()(std::span<const float> samples) {
        for (std::size_t i = 0; i + 1 < samples.size(); i += 2, ++frames) {
            if (samples[i + 1] == 0) {
                ++silent;
                continue;
            }
            const double slot = origin + static_cast<double>(frames) / soundRate;
            const double phase = phaseAt(slot);
            // Near the ramp's fall and near the edge of a gap the resampler rings.
            if (phase < 0.1 || phase > sawtooth - 0.1 || std::abs(samples[i + 1] - 1) > 1e-3F) continue;
            const double ramp = static_cast<double>(samples[i]) / static_cast<double>(samples[i + 1]);
            const double error = std::abs(ramp * sawtooth - phase);
            if (slot - origin >= from) worst = std::max(worst, error);
            if (slot - origin >= late) worstLate = std::max(worstLate, error);
        }
    }
};

} // namespace

TEST(SoundTrackWriter, KeepsStepForAnHourWithADriftingDeviceAndJitteringTimes) {
    // 180 ppm off, swinging by 40 ppm with the temperature; every reported time 8 ms to and fro, one in
    // fifty far too late.
    Device device;
    device.drift = [](double t) { return 180e-6 + 40e-6 * std::sin(2 * std::numbers::pi * t / 900); };
    device.jitter = 0.008;
    device.outliers = 0.02;
    device.heard = 1000;
    ManualClock clock;
    Listener listener;
    listener.origin = 1000.25;
    listener.late = 60;
    SoundTrackWriter track(clock, std::ref(listener));
    track.begin(listener.origin);
    while (device.heard < listener.origin + 3600) {
        device.deliver(track, clock);
        track.advance();
    }
    track.finish(clock.time);

    EXPECT_EQ(listener.frames, std::llround((clock.time - listener.origin) * soundRate));
    EXPECT_LT(listener.worst, 0.005);     // at any time, the first second included
    EXPECT_LT(listener.worstLate, 0.002); // without correction it would be 648 ms
    EXPECT_EQ(track.report().corrections, 0);
    EXPECT_NEAR(track.report().drift, 180e-6, 60e-6);
    RecordProperty("worstMicroseconds", static_cast<int>(listener.worst * 1e6));
    RecordProperty("worstAfterAMinuteMicroseconds", static_cast<int>(listener.worstLate * 1e6));
}

TEST(SoundTrackWriter, StartsAtTheFirstFrameWhicheverComesFirst) {
    struct Case {
        const char* name;
        double soundStarts; ///< relative to the first frame
        double beginsAfter; ///< seconds of sound delivered before `begin` is called
        double silence;     ///< seconds at the start of the track
    };
    for (const Case& c :
         {Case{"sound long before the picture", -5, 5.5, 0}, Case{"just before", -0.05, 0, 0},
          Case{"sound after the picture", 0.7, 0, 0.7}, Case{"more sound than is kept", -10, 10, 0}}) {
        SCOPED_TRACE(c.name);
        Device device;
        device.heard = 200 + c.soundStarts;
        ManualClock clock;
        Listener listener;
        listener.origin = 200;
        SoundTrackWriter track(clock, std::ref(listener));
        const double begin = device.heard + c.beginsAfter;
        while (device.heard < begin)
            device.deliver(track, clock);
        EXPECT_EQ(listener.frames, 0);
        track.begin(200);
        while (device.heard < 203)
            device.deliver(track, clock);
        track.finish(203.1);
        EXPECT_NEAR(static_cast<double>(listener.frames), 3.1 * soundRate, 1);
        EXPECT_NEAR(static_cast<double>(listener.silent), (c.silence + 203.1 - device.heard) * soundRate, 60);
        EXPECT_LT(listener.worst, 0.0005);
    }
}

TEST(SoundTrackWriter, FillsAGapWithSilenceAndGoesOnInStep) {
    Device device;
    device.drift = [](double) { return -300e-6; };
    device.jitter = 0.004;
    device.heard = 50;
    ManualClock clock;
    Listener listener;
    listener.origin = 50;
    SoundTrackWriter track(clock, std::ref(listener));
    track.begin(50);
    while (device.heard < 60)
        device.deliver(track, clock);
    // The device is gone for 7 s; the track follows, at most about a second behind.
    for (; clock.time < 67; clock.time += 0.25) {
        track.advance();
        const double behind = clock.time - 50 - static_cast<double>(listener.frames) / soundRate;
        EXPECT_LT(behind, 1.6);
    }
    const double silentBefore = static_cast<double>(listener.silent) / soundRate;
    EXPECT_GT(silentBefore, 5);
    device.skip(67 - device.heard);
    device.afterGap = true;
    while (device.heard < 75) {
        device.deliver(track, clock);
        track.advance();
    }
    track.finish(75.1);
    EXPECT_NEAR(static_cast<double>(listener.frames), 25.1 * soundRate, 1);
    EXPECT_NEAR(static_cast<double>(listener.silent) / soundRate, 7 + 75.1 - device.heard, 0.02);
    EXPECT_LT(listener.worst, 0.008);
}

TEST(SoundTrackWriter, NoticesSamplesLostWithoutNotice) {
    Device device;
    device.jitter = 0.003;
    ManualClock clock;
    Listener listener;
    listener.from = 11;
    SoundTrackWriter track(clock, std::ref(listener));
    track.begin(0);
    while (device.heard < 10)
        device.deliver(track, clock);
    device.skip(0.3); // an overrun: the counting goes on as if nothing had happened
    while (device.heard < 20)
        device.deliver(track, clock);
    track.finish(20.1);
    EXPECT_EQ(track.report().corrections, 1);
    EXPECT_NEAR(static_cast<double>(listener.silent) / soundRate, 0.3 + 20.1 - device.heard, 0.02);
    EXPECT_LT(listener.worst, 0.006);
    EXPECT_NEAR(static_cast<double>(listener.frames), 20.1 * soundRate, 1);
}

TEST(SoundTrackWriter, HoldsBackWhatIsNotPlayedYet) {
    // A monitor delivers sound when it is handed to the device, here 1.5 s before it is heard.
    Device device;
    device.latency = -1.5;
    device.heard = 30;
    ManualClock clock;
    clock.time = 28.5;
    Listener listener;
    listener.origin = 30;
    SoundTrackWriter track(clock, std::ref(listener));
    track.begin(30);
    while (device.heard < 36) {
        device.deliver(track, clock);
        EXPECT_LE(30 + static_cast<double>(listener.frames) / soundRate, std::max(clock.time, 30.0) + 1e-6);
    }
    track.finish(clock.time);
    EXPECT_NEAR(static_cast<double>(listener.frames), (clock.time - 30) * soundRate, 1);
    EXPECT_LE(listener.silent, 2); // the rounding of the last sample
    EXPECT_LT(listener.worst, 0.0005);
}

TEST(SoundTrackWriter, KeepsTheFailureOfItsSinkForItsOwner) {
    ManualClock clock;
    int calls = 0;
    SoundTrackWriter track(clock, [&calls](std::span<const float>) {
        ++calls;
        throw RecordingError("disk full");
    });
    track.begin(0);
    Device device;
    while (device.heard < 2)
        EXPECT_NO_THROW(device.deliver(track, clock));
    EXPECT_EQ(calls, 1);
    EXPECT_THROW(track.advance(), RecordingError);
    EXPECT_THROW(track.finish(2), RecordingError);
}

TEST(DriftResampler, KeepsTonesAndAddsNothing) {
    struct Case {
        double frequency, step;
        double worst; ///< largest distance from the exact sine
    };
    for (const Case& c : {Case{440, 1.0002, 1e-4}, Case{5000, 0.9995, 1e-4}, Case{15000, 1.004, 3e-4},
                          Case{18000, 1.00001, 0.012}}) {
        SCOPED_TRACE(c.frequency);
        DriftResampler resampler;
        std::vector<float> input;
        const double w = 2 * std::numbers::pi * c.frequency / soundRate;
        for (int i = 0; i < soundRate; ++i) {
            input.push_back(static_cast<float>(std::sin(w * i)));
            input.push_back(static_cast<float>(std::cos(w * i)));
        }
        double worst = 0;
        std::size_t count = 0;
        std::vector<float> out;
        for (std::size_t at = 0; at < input.size(); at += 1764) { // pieces that fit nothing
            resampler.push(std::span(input).subspan(at, std::min<std::size_t>(1764, input.size() - at)));
            for (;;) {
                const double position = resampler.position();
                out.clear();
                if (resampler.read(c.step, 1, out) == 0) break;
                ++count;
                if (position < 100) continue;
                worst = std::max({worst, std::abs(static_cast<double>(out[0]) - std::sin(w * position)),
                                  std::abs(static_cast<double>(out[1]) - std::cos(w * position))});
            }
        }
        EXPECT_LT(worst, c.worst);
        EXPECT_NEAR(static_cast<double>(count), (soundRate - 24) / c.step, 2);
    }
}
