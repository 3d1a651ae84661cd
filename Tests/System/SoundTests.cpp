#include "RecordCore/Capture/HostClock.h"
#include "RecordCore/Capture/Microphones.h"
#include "RecordCore/Capture/PulseAudio/PulseSound.h"
#include "RecordCore/Capture/SoundTrackWriter.h"
#include "RecordCore/Media/SoundReader.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/Support/RealMedia.h"
#include "Tests/System/PulseDaemon.h"

#include <gtest/gtest.h>
#include <pulse/simple.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <fcntl.h>
#include <numbers>
#include <thread>
#include <unistd.h>

using namespace RecordCore;

namespace {

constexpr double burst = 0.05; // seconds of tone at the start of every second

std::int16_t toneSample(double time, double frequency, double level) {
    return static_cast<std::int16_t>(32767 * level * std::sin(2 * std::numbers::pi * frequency * time));
}

/// Speaks into a microphone of the daemon: a tone, or a burst of it at every full second of the host clock,
/// at the rate of a device that is `drift` off.
class Speaker {
public:
    Speaker(const std::filesystem::path& pipe, double frequency, bool bursts, double drift = 0) :
        thread([=](const std::stop_token& stop) {
            const int fd = open(pipe.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
            const double start = monotonicSeconds();
            std::int64_t sent = 0;
            std::vector<std::int16_t> samples;
            while (!stop.stop_requested()) {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
                const auto due =
                    static_cast<std::int64_t>((monotonicSeconds() - start) * soundRate / (1 + drift));
                samples.clear();
                for (; sent < due; ++sent) {
                    const double time = start + static_cast<double>(sent) * (1 + drift) / soundRate;
                    const bool on = !bursts || time - std::floor(time) < burst;
                    const std::int16_t sample = on ? toneSample(time, frequency, 0.5) : std::int16_t{0};
                    samples.insert(samples.end(), {sample, sample});
                }
                // A full pipe means that nobody listens: a microphone does not wait.
                static_cast<void>(!write(fd, samples.data(), samples.size() * 2));
            }
            close(fd);
        }) {}

private:
    std::jthread thread;
};

/// Plays a tone on the default output or a named one, or a burst of it once a second, and knows when these
/// are heard.
class Player {
public:
    Player(const char* device, double frequency, bool bursts) :
        thread([=, this](const std::stop_token& stop) {
            const pa_sample_spec format{PA_SAMPLE_S16LE, soundRate, 2};
            const pa_buffer_attr buffer{~0U, 4 * 4800, ~0U, ~0U, ~0U};
            pa_simple* stream = pa_simple_new(nullptr, "test", PA_STREAM_PLAYBACK, device, "tone", &format,
                                              nullptr, &buffer, nullptr);
            if (!stream) return;
            std::int64_t sent = 0;
            std::array<std::int16_t, 960> chunk;
            while (!stop.stop_requested()) {
                for (std::size_t i = 0; i < chunk.size(); i += 2, ++sent) {
                    const double time = static_cast<double>(sent) / soundRate;
                    const bool on = !bursts || time - std::floor(time) < burst;
                    chunk[i] = chunk[i + 1] = on ? toneSample(time, frequency, 0.5) : std::int16_t{0};
                }
                pa_simple_write(stream, chunk.data(), sizeof chunk, nullptr);
                int error = 0;
                const double latency = static_cast<double>(pa_simple_get_latency(stream, &error)) * 1e-6;
                if (error == 0 && sent > soundRate)
                    offsets.push_back(monotonicSeconds() + latency - static_cast<double>(sent) / soundRate);
            }
            pa_simple_free(stream);
        }) {}

    /// Stops, and tells at which host time the first burst was heard.
    double finish() {
        thread.request_stop();
        thread.join();
        std::nth_element(offsets.begin(), offsets.begin() + static_cast<std::ptrdiff_t>(offsets.size() / 2),
                         offsets.end());
        return offsets.empty() ? 0 : offsets[offsets.size() / 2];
    }

private:
    std::vector<double> offsets;
    std::jthread thread;
};

/// What a recorded track holds.
struct Track {
    std::vector<float> left;

    void add(std::span<const float> samples) {
        for (std::size_t i = 0; i < samples.size(); i += 2)
            left.push_back(samples[i]);
    }

    /// Level of a frequency in the track's left channel, 0 dB for a full-scale sine, in the loudest twentieth
    /// of a second between two times.
    double decibels(double frequency, double from, double to) const {
        constexpr std::size_t window = soundRate / 20;
        double loudest = 0;
        const auto last = std::min(static_cast<std::size_t>(to * soundRate), left.size());
        for (auto first = static_cast<std::size_t>(from * soundRate); first + window <= last;
             first += window / 2) {
            double re = 0;
            double im = 0;
            for (std::size_t i = 0; i < window; ++i) {
                const double turn = 2 * std::numbers::pi * static_cast<double>(i);
                const double hann = 1 - std::cos(turn / window);
                re += hann * static_cast<double>(left[first + i]) * std::cos(turn * frequency / soundRate);
                im += hann * static_cast<double>(left[first + i]) * std::sin(turn * frequency / soundRate);
            }
            loudest = std::max(loudest, 2 * std::hypot(re, im) / window);
        }
        return 20 * std::log10(std::max(loudest, 1e-9));
    }
    /// Seconds of the track at which sound begins after at least 0.4 s of quiet.
    std::vector<double> onsets() const {
        std::vector<double> found;
        std::size_t quiet = 0;
        for (std::size_t i = 0; i < left.size(); ++i) {
            if (std::abs(left[i]) > 0.05F) {
                if (quiet > 2 * soundRate / 5) found.push_back(static_cast<double>(i) / soundRate);
                quiet = 0;
            } else {
                ++quiet;
            }
        }
        return found;
    }
    double length() const { return static_cast<double>(left.size()) / soundRate; }
};

/// A recording of one stream from the moment it is made.
class Recording : public Track {
public:
    explicit Recording(std::unique_ptr<SoundStream> source, SoundEncoder* encoder = nullptr) :
        stream(std::move(source)),
        track(HostClock::system(), [this, encoder](std::span<const float> samples) {
            add(samples);
            if (encoder) encoder->encode(samples);
        }) {
        stream->start(
            {[this](const SoundBlock& block) { track.add(block); },
             [this](bool present, const std::string&) { (present ? returns : losses).fetch_add(1); }});
        origin = monotonicSeconds();
        track.begin(origin);
        ticker = std::jthread([this](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                track.advance();
                std::this_thread::sleep_for(std::chrono::milliseconds(100));
            }
        });
    }
    void runUntil(double seconds) {
        while (monotonicSeconds() < origin + seconds)
            pauseShortly();
    }
    void finish() {
        ticker.request_stop();
        ticker.join();
        stream->stop();
        end = monotonicSeconds();
        track.finish(end);
    }

    std::unique_ptr<SoundStream> stream;
    SoundTrackWriter track;
    std::atomic<int> losses{0};
    std::atomic<int> returns{0};
    double origin = 0;
    double end = 0;
    std::jthread ticker;
};

/// How far the bursts in a track that starts at `origin` usually are from where they belong (the median: the
/// speaker and the player are programs on a busy machine and now and then late themselves); `phase` is the
/// host time of any one burst.
double onsetError(const Track& track, double origin, double phase) {
    std::vector<double> errors;
    for (const double onset : track.onsets()) {
        const double late = origin + onset - phase;
        errors.push_back(std::abs(late - std::round(late)));
    }
    if (errors.empty()) return INFINITY;
    std::sort(errors.begin(), errors.end());
    return errors[errors.size() / 2];
}

class Sound : public testing::Test {
protected:
    void SetUp() override {
        if (!PulseDaemon::installed()) GTEST_SKIP() << "pulseaudio or pactl is not installed";
        daemon.emplace();
    }
    std::optional<PulseDaemon> daemon;
    PulseSound sound;
};

} // namespace

TEST_F(Sound, KeepsMicrophoneAndSystemSoundApartAndInStep) {
    daemon->plugMicrophone("desk");
    const Speaker voice(daemon->pipeOf("desk"), 1000, true, 400e-6);
    Player music(nullptr, 440, true);
    const RealMedia media;
    const TemporaryFolder folder;
    const std::filesystem::path file = folder / "sound.mp4";
    const auto movie = media.createMovie(file, MovieLayout::recording);
    // A black picture that stands: the file's times are those of its video.
    const std::vector<std::uint8_t> luma(64 * 64, 16);
    const std::vector<std::uint8_t> chroma(32 * 32, 128);
    const PlanarView black{{luma.data(), chroma.data(), chroma.data()}, {64, 32, 32}, 64, 64};
    VideoSettings settings;
    settings.width = settings.height = 64;
    settings.bitrate = 100000;
    settings.realTime = true;
    const auto video = media.makeVideoEncoder(settings, [&](const Packet& p) { movie->write(0, p); });
    ASSERT_EQ(movie->addTrack(video->description()), 0);
    std::array<std::unique_ptr<SoundEncoder>, 2> encoders;
    for (int track = 1; track <= 2; ++track) {
        auto& encoder = encoders[static_cast<std::size_t>(track - 1)];
        encoder = media.makeSoundEncoder(192000, [&, track](const Packet& p) { movie->write(track, p); });
        ASSERT_EQ(movie->addTrack(encoder->description()), track);
    }
    movie->begin();
    video->encode(black, 0);
    Recording system(sound.openSystemSound(), encoders[0].get());
    Recording microphone(sound.openMicrophone("desk"), encoders[1].get());
    system.runUntil(7);
    microphone.finish();
    system.finish();
    video->finish(7 * 60);
    for (const auto& encoder : encoders)
        encoder->finish();
    movie->finish();
    const double played = music.finish();

    EXPECT_NEAR(microphone.length(), microphone.end - microphone.origin, 1e-4);
    EXPECT_NEAR(system.length(), system.end - system.origin, 1e-4);
    EXPECT_GT(microphone.decibels(1000, 1, 6), -10);
    EXPECT_LT(microphone.decibels(440, 1, 6), -40);
    EXPECT_GT(system.decibels(440, 1, 6), -10);
    EXPECT_LT(system.decibels(1000, 1, 6), -40);
    EXPECT_GE(microphone.onsets().size(), 6U);
    EXPECT_GE(system.onsets().size(), 5U);
    EXPECT_LT(onsetError(microphone, microphone.origin, 0), 0.025);
    EXPECT_LT(onsetError(system, system.origin, played), 0.025);

    // The same again as it comes out of the file.
    const auto readers = media.openSound(file);
    ASSERT_EQ(readers.size(), 2U);
    std::array<Track, 2> decoded;
    for (std::size_t i = 0; i < 2; ++i) {
        std::vector<float> samples(static_cast<std::size_t>(2 * readers[i]->end()));
        readers[i]->read(0, samples);
        decoded[i].add(samples);
    }
    EXPECT_NEAR(decoded[0].length(), system.length(), 0.03); // whole AAC frames
    EXPECT_NEAR(decoded[1].length(), microphone.length(), 0.03);
    EXPECT_GT(decoded[0].decibels(440, 1, 6), -10);
    EXPECT_LT(decoded[0].decibels(1000, 1, 6), -40);
    EXPECT_GT(decoded[1].decibels(1000, 1, 6), -10);
    EXPECT_LT(decoded[1].decibels(440, 1, 6), -40);
    EXPECT_LT(onsetError(decoded[0], system.origin, played), 0.025);
    EXPECT_LT(onsetError(decoded[1], microphone.origin, 0), 0.025);
    RecordProperty("microphoneMicroseconds",
                   static_cast<int>(onsetError(microphone, microphone.origin, 0) * 1e6));
    RecordProperty("systemMicroseconds", static_cast<int>(onsetError(system, system.origin, played) * 1e6));
}

TEST_F(Sound, RidesOutAMicrophoneThatGoesAndReturns) {
    daemon->plugMicrophone("desk");
    std::optional<Speaker> voice(std::in_place, daemon->pipeOf("desk"), 1000, true);
    Recording microphone(sound.openMicrophone("desk"));
    microphone.runUntil(2.5);
    daemon->unplugMicrophones();
    ASSERT_TRUE(eventually(5, [&] { return microphone.losses == 1; }));
    voice.reset();
    const double gone = monotonicSeconds() - microphone.origin;
    microphone.runUntil(gone + 2.5);
    const double back = monotonicSeconds() - microphone.origin;
    daemon->plugMicrophone("desk");
    voice.emplace(daemon->pipeOf("desk"), 1000, true);
    ASSERT_TRUE(eventually(5, [&] { return microphone.returns == 1; }));
    microphone.runUntil(back + 4);
    microphone.finish();

    EXPECT_NEAR(microphone.length(), microphone.end - microphone.origin, 1e-4);
    EXPECT_LT(microphone.decibels(1000, gone + 0.1, back - 0.1), -150); // silence to the last bit
    EXPECT_LT(onsetError(microphone, microphone.origin, 0), 0.025);
    const std::vector<double> onsets = microphone.onsets();
    EXPECT_GE(std::count_if(onsets.begin(), onsets.end(), [=](double t) { return t > back; }), 3);
    EXPECT_GE(std::count_if(onsets.begin(), onsets.end(), [=](double t) { return t < gone; }), 2);
    RecordProperty("usualMicroseconds", static_cast<int>(onsetError(microphone, microphone.origin, 0) * 1e6));
}

TEST_F(Sound, FollowsTheDefaultOutput) {
    std::optional<Player> first(std::in_place, "speakers", 440, false);
    Player second("headphones", 2000, false);
    Recording system(sound.openSystemSound());
    system.runUntil(1.5);
    first.reset(); // a player on the old default would be moved along
    ASSERT_TRUE(daemon->control({"set-default-sink", "headphones"}));
    system.runUntil(3.5);
    system.finish();
    second.finish();
    EXPECT_GT(system.decibels(440, 0.3, 1.3), -8);
    EXPECT_LT(system.decibels(2000, 0.3, 1.3), -60);
    EXPECT_GT(system.decibels(2000, 2.5, 3.4), -8);
    EXPECT_LT(system.decibels(440, 2.5, 3.4), -60);
}

TEST_F(Sound, SurvivesARestartOfTheService) {
    Recording system(sound.openSystemSound());
    system.runUntil(1);
    daemon->stop();
    ASSERT_TRUE(eventually(3, [&] { return system.losses == 1; }));
    daemon->start();
    ASSERT_TRUE(eventually(5, [&] { return system.returns == 1; }));
    Player music(nullptr, 440, false);
    const double back = monotonicSeconds() - system.origin;
    system.runUntil(back + 2);
    system.finish();
    music.finish();
    EXPECT_NEAR(system.length(), system.end - system.origin, 1e-4);
    EXPECT_GT(system.decibels(440, back + 1, back + 1.9), -8);
}

TEST_F(Sound, IsStoppedAtOnceWhenTheServiceHangs) {
    Recording system(sound.openSystemSound());
    system.runUntil(1);
    daemon->freeze(true);
    system.runUntil(4);
    const double before = monotonicSeconds();
    system.finish();
    const double after = monotonicSeconds();
    std::string message;
    try {
        sound.openSystemSound()->start({});
    } catch (const RecordingError& error) {
        message = error.what();
    }
    daemon->freeze(false);
    EXPECT_LT(after - before, 1.0); // what was promised, far above what it takes
    EXPECT_NEAR(system.length(), system.end - system.origin, 1e-4); // silence took its place
    EXPECT_EQ(message, "the sound service does not answer");
}

TEST_F(Sound, ListsMicrophonesAndMetersThem) {
    EXPECT_TRUE(sound.microphones().empty()); // the outputs' monitors are none
    EXPECT_EQ(sound.defaultMicrophone(), "");
    auto none = sound.openMicrophone("");
    EXPECT_THROW(none->start({}), RecordingError);

    daemon->plugMicrophone("desk");
    daemon->plugMicrophone("head");
    const std::vector<SoundDevice> found = sound.microphones();
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].id, "desk");
    EXPECT_FALSE(found[0].name.empty());
    EXPECT_EQ(sound.defaultMicrophone(), "desk");

    std::mutex mutex;
    std::vector<std::function<void()>> posted;
    Microphones microphones(sound, [&](std::function<void()> call) {
        const std::scoped_lock lock(mutex);
        posted.push_back(std::move(call));
    });
    const Speaker voice(daemon->pipeOf("head"), 1000, false);
    microphones.select("head");
    microphones.startMeter();
    ASSERT_TRUE(microphones.metering());
    const double expected = (20 * std::log10(0.5 / std::numbers::sqrt2) + 50) / 50;
    EXPECT_TRUE(eventually(5, [&] {
        std::vector<std::function<void()>> calls;
        {
            const std::scoped_lock lock(mutex);
            calls.swap(posted);
        }
        for (auto& call : calls)
            call();
        return std::abs(microphones.level() - expected) < 0.01;
    })) << microphones.level();
    microphones.stopMeter();
}

TEST(SoundWithoutService, SaysSo) {
    setenv("PULSE_SERVER", "unix:/nonexistent/socket", 1);
    PulseSound sound;
    for (const auto& ask : {std::function<void()>([&] { sound.openSystemSound()->start({}); }),
                            std::function<void()>([&] { sound.openMicrophone("")->start({}); }),
                            std::function<void()>([&] { sound.microphones(); })}) {
        try {
            ask();
            ADD_FAILURE() << "no error";
        } catch (const RecordingError& error) {
            EXPECT_STREQ(error.what(),
                         "no sound service is running (neither PulseAudio nor PipeWire answers)");
        }
    }
    unsetenv("PULSE_SERVER");
}
