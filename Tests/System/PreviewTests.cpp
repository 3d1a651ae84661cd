#include "RecordCore/Capture/HostClock.h"
#include "RecordCore/Capture/PulseAudio/PulseOutput.h"
#include "RecordCore/Capture/PulseAudio/PulseSound.h"
#include "RecordCore/Capture/SoundTrackWriter.h"
#include "RecordCore/Media/SoundReader.h"
#include "RecordCore/Preview/Player.h"
#include "RecordCore/Preview/Preview.h"
#include "Tests/Support/RealMedia.h"
#include "Tests/System/PulseDaemon.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

using namespace RecordCore;
using Reason = SpeedSegment::Reason;

namespace {

/// A recording that is white, and beeps, for a tenth of every second.
void makeClip(const MediaBackend& media, const std::filesystem::path& file, int seconds) {
    const auto movie = media.createMovie(file, MovieLayout::film);
    VideoSettings settings;
    settings.width = 320;
    settings.height = 180;
    settings.bitrate = 1'000'000;
    const auto video = media.makeVideoEncoder(settings, [&](const Packet& p) { movie->write(0, p); });
    movie->addTrack(video->description());
    const auto sound = media.makeSoundEncoder(192'000, [&](const Packet& p) { movie->write(1, p); });
    movie->addTrack(sound->description());
    movie->begin();
    Picture black(320, 180);
    Picture white(320, 180);
    white.fill(235, 128, 128);
    std::vector<float> samples(800 * 2);
    for (int i = 0; i < seconds * 60; ++i) {
        video->encode(i % 60 < 6 ? white.view() : black.view(), i);
        for (std::size_t k = 0; k < 800; ++k) {
            const double time = (i * 800 + static_cast<double>(k)) / soundRate;
            samples[2 * k] = samples[2 * k + 1] =
                i % 60 < 6 ? static_cast<float>(0.5 * std::sin(2 * std::numbers::pi * 1000 * time)) : 0.0F;
        }
        sound->encode(samples);
    }
    video->finish(seconds * 60);
    sound->finish();
    movie->finish();
}

bool lit(const PreviewFrame& frame) {
    const auto x = static_cast<std::ptrdiff_t>(frame.window.x + frame.window.width / 2);
    const auto y = static_cast<std::ptrdiff_t>(frame.window.y + frame.window.height / 2);
    return frame.image->pixels[static_cast<std::size_t>(frame.image->stride() * y + x * 4)] > 200;
}

/// Host times at which flashes were shown.
struct Flashes {
    std::mutex mutex;
    std::vector<double> times;
    bool before = true;
    bool playing = false;

    Player::Handlers handlers() {
        Player::Handlers all;
        all.onFrame = [this](const PreviewFrame& frame) {
            const double now = HostClock::system().now();
            const std::lock_guard lock(mutex);
            if (lit(frame) && !before) times.push_back(now);
            before = lit(frame);
        };
        all.onPlaying = [this](bool plays) {
            const std::lock_guard lock(mutex);
            playing = plays;
        };
        return all;
    }
    bool ended() {
        const std::lock_guard lock(mutex);
        return !times.empty() && !playing;
    }
};

} // namespace

TEST(PreviewSound, IsHeardWhenThePictureIsSeen) {
    if (!PulseDaemon::installed()) GTEST_SKIP() << "pulseaudio or pactl is not installed";
    PulseDaemon daemon;
    const RealMedia media;
    const TemporaryFolder folder;
    const auto file = folder / "clip.mp4";
    makeClip(media, file, 12);
    Plan plan;
    plan.source = media.sourceInfo(file);
    plan.segments = {{0, 4.5, 1, Reason::normal}, {4.5, 6.4, 1, Reason::cut}, {6.4, 12, 1, Reason::normal}};
    plan.shots = {{0, NRect::full()}};
    const Preview::Built built =
        Preview::build(media, file, plan, Project(), std::nullopt, std::nullopt, 0.2);

    // What the sound card plays, by the host's clock.
    std::vector<float> heard;
    SoundTrackWriter track(HostClock::system(), [&](std::span<const float> samples) {
        for (std::size_t i = 0; i < samples.size(); i += 2)
            heard.push_back(samples[i]);
    });
    const auto monitor = PulseSound().openSystemSound();
    monitor->start({[&](const SoundBlock& block) { track.add(block); }, {}});
    const double origin = HostClock::system().now();
    track.begin(origin);

    Flashes flashes;
    Player player(media, built.item, std::make_unique<PulseOutput>(), flashes.handlers());
    player.play();
    bool led = false;
    ASSERT_TRUE(eventually(60, [&] {
        track.advance();
        led = led || player.followsSound();
        return flashes.ended();
    }));
    EXPECT_TRUE(led);
    monitor->stop();
    track.finish(HostClock::system().now());

    std::vector<double> beeps;
    std::size_t quiet = soundRate;
    for (std::size_t i = 0; i < heard.size(); ++i) {
        if (std::abs(heard[i]) > 0.05F) {
            if (quiet > soundRate / 5) beeps.push_back(origin + static_cast<double>(i) / soundRate);
            quiet = 0;
        } else {
            ++quiet;
        }
    }
    ASSERT_GE(flashes.times.size(), 6U);
    std::vector<double> apart;
    for (const double flash : flashes.times) {
        double nearest = 10;
        for (const double beep : beeps)
            if (std::abs(flash - beep) < std::abs(nearest)) nearest = flash - beep;
        apart.push_back(nearest);
    }
    std::sort(apart.begin(), apart.end());
    // The usual one: on a busy machine this or that frame, or the recording of the sound, is late itself.
    const double usual = apart[apart.size() / 2];
    EXPECT_LT(std::abs(usual), 0.02);
    RecordProperty("usualMicroseconds", static_cast<int>(usual * 1e6));
    RecordProperty("leastMicroseconds", static_cast<int>(apart.front() * 1e6));
    RecordProperty("mostMicroseconds", static_cast<int>(apart.back() * 1e6));
}

TEST(PreviewSound, WithoutAServiceTheFilmPlaysSilently) {
    setenv("PULSE_SERVER", "unix:/nonexistent/socket", 1);
    const RealMedia media;
    const TemporaryFolder folder;
    const auto file = folder / "clip.mp4";
    makeClip(media, file, 2);
    Plan plan;
    plan.source = media.sourceInfo(file);
    plan.segments = {{0, 2, 1, Reason::normal}};
    plan.shots = {{0, NRect::full()}};
    const Preview::Built built =
        Preview::build(media, file, plan, Project(), std::nullopt, std::nullopt, 0.2);
    Flashes flashes;
    Player player(media, built.item, std::make_unique<PulseOutput>(), flashes.handlers());
    player.play();
    EXPECT_TRUE(eventually(60, [&] { return flashes.ended(); }));
    EXPECT_FALSE(player.followsSound());
    unsetenv("PULSE_SERVER");
}
