#include "RecordCore/Export/Exporter.h"
#include "RecordCore/Export/FrameRenderer.h"
#include "RecordCore/Export/LoadedRecording.h"
#include "RecordCore/Media/SoundReader.h"
#include "RecordCore/Preview/Player.h"
#include "RecordCore/Preview/Preview.h"
#include "RecordCore/Rendering/RgbImage.h"
#include "Tests/Media/Clips.h"
#include "Tests/Support/RealMedia.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <iterator>
#include <map>
#include <mutex>
#include <random>
#include <set>
#include <thread>
#include <vector>

using namespace RecordCore;
using Reason = SpeedSegment::Reason;

namespace {

/// Long enough on the slowest machine; nothing waits for it unless it fails.
constexpr std::chrono::seconds patience{60};

/// Hears what a player tells, and waits for it.
class Audience {
public:
    Player::Handlers handlers() {
        Player::Handlers all;
        all.onFrame = [this](const PreviewFrame& frame) {
            std::unique_lock lock(mutex);
            frames.push_back(frame);
            changed.notify_all();
            changed.wait(lock, [this] { return !held; });
        };
        all.onTime = [this](double seconds, std::uint64_t) {
            const std::lock_guard lock(mutex);
            time = seconds;
            changed.notify_all();
        };
        all.onPlaying = [this](bool plays) {
            const std::lock_guard lock(mutex);
            playing = plays;
            ++turns;
            changed.notify_all();
        };
        all.onFailure = [this](const std::string& problem) {
            const std::lock_guard lock(mutex);
            failure = problem;
            changed.notify_all();
        };
        return all;
    }

    /// Waits for a frame for which `wanted` holds, the newest first.
    template <typename Wanted>
    PreviewFrame frame(const Wanted& wanted) {
        std::unique_lock lock(mutex);
        PreviewFrame found;
        const bool came = changed.wait_for(lock, patience, [&] {
            for (auto one = frames.rbegin(); one != frames.rend(); ++one)
                if (wanted(*one)) {
                    found = *one;
                    return true;
                }
            return false;
        });
        EXPECT_TRUE(came) << "no such frame";
        return found;
    }
    PreviewFrame exact(std::uint64_t seek) {
        return frame([seek](const PreviewFrame& one) { return one.seek == seek && one.exact; });
    }
    template <typename Holds>
    bool until(const Holds& holds) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, patience, holds);
    }
    void hold(bool on) {
        const std::lock_guard lock(mutex);
        held = on;
        changed.notify_all();
    }

    std::mutex mutex;
    std::condition_variable changed;
    std::vector<PreviewFrame> frames;
    double time = -1;
    bool playing = false;
    int turns = 0;
    bool held = false;
    std::string failure;
};

/// A sound output whose time goes on when the test says so.
class ScriptedOutput final : public SoundOutput {
public:
    /// What the test holds on to; it outlives the output.
    struct Script {
        std::mutex mutex;
        SoundOutput::Source source;
        std::vector<float> played; ///< since the last start, left channel
        int starts = 0;

        bool started() {
            const std::lock_guard lock(mutex);
            return static_cast<bool>(source);
        }
        void advance(double seconds) {
            const std::lock_guard lock(mutex);
            if (!source) return;
            std::vector<float> samples(static_cast<std::size_t>(std::llround(seconds * soundRate)) * 2);
            source(samples);
            for (std::size_t i = 0; i < samples.size(); i += 2)
                played.push_back(samples[i]);
        }
    };

    explicit ScriptedOutput(std::shared_ptr<Script> script) : script(std::move(script)) {}
    void start(Source source) override {
        const std::lock_guard lock(script->mutex);
        script->source = std::move(source);
        script->played.clear();
        ++script->starts;
    }
    void stop() override {
        const std::lock_guard lock(script->mutex);
        script->source = nullptr;
    }
    std::optional<double> heard() const override {
        const std::lock_guard lock(script->mutex);
        return static_cast<double>(script->played.size());
    }

private:
    std::shared_ptr<Script> script;
};

/// A recording that flashes and beeps for a tenth of every second, and counts its frames in between.
void makeClip(const std::filesystem::path& file, double seconds) {
    const std::string length = std::to_string(seconds);
    ffmpeg("-f lavfi -i testsrc2=s=320x180:r=60:d=" + length +
           ",drawbox=c=white:t=fill:enable='lt(mod(t+0.001\\,1)\\,0.1)' "
           "-f lavfi -i aevalsrc='if(lt(mod(t\\,1)\\,0.1)\\,0.5*sin(2*PI*1000*t)\\,0)':s=48000:d=" +
           length + " -c:v libx264 -preset ultrafast -g 60 -bf 0 -pix_fmt yuv420p -c:a aac " + file.string());
}

Plan planOf(const SourceInfo& info, std::vector<SpeedSegment> segments) {
    Plan plan;
    plan.source = info;
    plan.segments = std::move(segments);
    plan.shots = {{0, NRect::full()}};
    return plan;
}

class PlayerTest : public testing::Test {
protected:
    void open(const Plan& plan, std::unique_ptr<SoundOutput> output = nullptr, double scale = 0.15) {
        const Preview::Built built =
            Preview::build(media, clip, plan, project, std::nullopt, std::nullopt, scale);
        player.emplace(media, built.item, std::move(output), audience.handlers());
    }
    Player::Film film(const Plan& plan, double scale = 0.15) {
        return {std::make_shared<const Scene>(plan, project, std::nullopt, 60),
                Preview::compositor(plan, project, plan.source, false, {}, scale),
                Timeline::composition(plan)};
    }
    /// Whether the frame shows the flash: the recording's middle is white.
    static bool flashes(const PreviewFrame& frame) {
        const int x = static_cast<int>(frame.window.x + frame.window.width / 2);
        const int y = static_cast<int>(frame.window.y + frame.window.height / 2);
        const std::uint8_t* pixel =
            frame.image->pixels.data() + frame.image->stride() * y + static_cast<std::ptrdiff_t>(x) * 4;
        return pixel[0] > 240 && pixel[1] > 240 && pixel[2] > 240;
    }

    RealMedia media;
    TemporaryFolder folder;
    std::filesystem::path clip = folder / "clip.mp4";
    Project project;
    Audience audience;
    std::optional<Player> player;
};

} // namespace

TEST(Preview, ShowsTheFramesOfTheFilm) {
    const RealMedia media;
    // The sample: typing, waiting, zooms and speed-ups, with a camera beside it.
    const TemporaryFolder folder;
    const std::filesystem::path sample = OMBREL_SOURCE_DIR "/OmbrelRecord/Resources/sample";
    for (const char* name : {"recording.mp4", "input.json"})
        std::filesystem::copy_file(sample / name, folder / name);
    ffmpeg("-f lavfi -i testsrc2=s=160x120:r=15:d=30 -c:v libx264 -preset ultrafast " +
           (folder / "camera.mp4").string());
    LoadedRecording recording = LoadedRecording::load(media, folder.path());
    recording.project.cameraShow = true;
    recording.project.title = "A title";
    const Plan plan = recording.plan();
    constexpr double scale = 0.4;

    // As the exporter composes before it encodes.
    FrameCursor frames(media.openVideo(recording.files.video()));
    CameraSource camera(media.openVideo(recording.files.camera()), plan,
                        recording.log->cameraOffset.value_or(0));
    Canvas canvas(std::make_shared<const Compositor>(Exporter::compositorSettings(
        plan, recording.project, recording.info, scale, false, true, recording.files.folder)));
    const Scene scene(plan, recording.project, recording.log, 60);

    Audience audience;
    const Preview::Built built = Preview::build(media, recording.files.video(), plan, recording.project,
                                                recording.log, recording.camera(), scale);
    Player player(media, built.item, nullptr, audience.handlers());
    std::mt19937 random(11);
    std::uniform_int_distribution<std::int64_t> anyFrame(0, scene.frameCount() - 1);
    std::vector<double> times(50);
    for (double& seconds : times)
        seconds = static_cast<double>(anyFrame(random)) / 60;
    std::map<double, PreviewImage> exported;
    for (const double seconds : std::set<double>(times.begin(), times.end())) {
        const Picture& picture = composeFrame(scene, canvas, frames, &camera, seconds);
        PreviewImage& image = exported.try_emplace(seconds, picture.width(), picture.height()).first->second;
        toBgra(picture.view(), image.pixels.data(), image.stride(), 0, picture.height());
    }
    for (const double seconds : times) {
        const PreviewImage& film = exported.at(seconds);
        const PreviewFrame shown = audience.exact(player.seek(seconds));
        ASSERT_EQ(shown.seconds, seconds);
        ASSERT_EQ(shown.image->width, film.width);
        ASSERT_TRUE(shown.image->pixels == film.pixels) << "at " << seconds;
    }
    EXPECT_EQ(audience.failure, "");
}

TEST_F(PlayerTest, TheNewestWishCounts) {
    makeClip(clip, 4);
    open(planOf(media.sourceInfo(clip), {{0, 4, 1, Reason::normal}}));
    audience.exact(0);
    // While the player is held up, many wishes come; only the last one is left of them.
    audience.hold(true);
    const std::uint64_t first = player->seek(1);
    ASSERT_TRUE(audience.until([&] { return audience.frames.back().seek == first; }));
    std::uint64_t last = 0;
    for (int i = 0; i < 100; ++i)
        last = player->seek(4 - i * 0.02);
    audience.hold(false);
    EXPECT_NEAR(audience.exact(last).seconds, 4 - 99 * 0.02, 1 / 60.0);
    const std::lock_guard lock(audience.mutex);
    for (const PreviewFrame& frame : audience.frames)
        EXPECT_TRUE(frame.seek <= first || frame.seek == last) << "carried out: " << frame.seek;
}

TEST_F(PlayerTest, PlaysToTheEndAndStops) {
    makeClip(clip, 2);
    open(planOf(media.sourceInfo(clip), {{0, 2, 1, Reason::normal}}));
    audience.exact(0);
    const std::uint64_t near = player->seek(1.5);
    audience.exact(near);
    player->play();
    ASSERT_TRUE(audience.until([&] { return audience.turns == 2; }));
    EXPECT_FALSE(audience.playing);
    EXPECT_EQ(audience.time, 2);
    EXPECT_NEAR(audience.frame([](const PreviewFrame& one) { return one.exact; }).seconds, 119 / 60.0, 1e-9);
    const auto stats = player->stats();
    EXPECT_EQ(stats.shown + stats.dropped, 29) << "every frame of half a second but the one it began with";
    // Once more from there: from the beginning.
    player->play();
    audience.frame([&](const PreviewFrame& one) { return one.seconds > 0 && one.seconds < 1.4; });
    player->pause();
    ASSERT_TRUE(audience.until([&] { return audience.turns == 4; }));
}

TEST_F(PlayerTest, PictureAndSoundKeepInStepThroughCutsAndSpeeds) {
    makeClip(clip, 8);
    const SourceInfo info = media.sourceInfo(clip);
    auto script = std::make_shared<ScriptedOutput::Script>();
    // Beeps at 0, 1, after the cut at 3 (1.5 of the film), 4 (2.5), 5 (3.5), then fast at 6 (4.25), 7 (4.75).
    const Plan plan = planOf(info, {{0, 1.5, 1, Reason::normal},
                                    {1.5, 3, 1, Reason::cut},
                                    {3, 5.5, 1, Reason::normal},
                                    {5.5, 8, 2, Reason::manual}});
    open(plan, std::make_unique<ScriptedOutput>(script));
    audience.exact(0);
    for (const double from : {0.0, 0.75}) {
        audience.exact(player->seek(from));
        {
            const std::lock_guard lock(audience.mutex);
            audience.frames.clear();
            audience.time = -1;
        }
        player->play();
        while (!script->started())
            std::this_thread::yield();
        // The sound goes on a frame at a time, and waits for the picture to follow.
        int lit = 0;
        for (double at = from; at < 5.2; at += 1 / 60.0) {
            script->advance(1 / 60.0);
            const double reached = from + static_cast<double>(script->played.size()) / soundRate;
            ASSERT_TRUE(audience.until([&] { return audience.time >= reached - 0.1; })) << reached;
            const std::lock_guard lock(audience.mutex);
            for (const PreviewFrame& frame : audience.frames) {
                if (!frame.exact) continue;
                // What is shown at a time is what is heard at that time.
                const double second = std::fmod(plan.sourceTime(frame.seconds) + 0.002, 1.0);
                const bool edge = std::abs(second - 0.1) < 0.02;
                if (!edge) {
                    ASSERT_EQ(flashes(frame), second < 0.1) << frame.seconds;
                }
                if (second < 0.1) ++lit;
            }
            audience.frames.clear();
        }
        EXPECT_GT(lit, 0);
        player->pause();
        ASSERT_TRUE(audience.until([&] { return !audience.playing; }));
        // What is not made in time is silent; what is heard is heard when it belongs.
        std::size_t loud = 0;
        for (std::size_t i = 0; i < script->played.size(); ++i) {
            if (std::abs(script->played[i]) < 0.05F) continue;
            ++loud;
            const double time = from + static_cast<double>(i) / soundRate;
            const double second = std::fmod(plan.sourceTime(time) + 0.02, 1.0);
            ASSERT_LT(second, 0.17) << "a beep at " << time;
        }
        EXPECT_GT(loud, soundRate / 20);
    }
    EXPECT_EQ(script->starts, 2);
}

TEST_F(PlayerTest, SwapsFilmAndLookWhileItPlays) {
    makeClip(clip, 6);
    const SourceInfo info = media.sourceInfo(clip);
    auto script = std::make_shared<ScriptedOutput::Script>();
    const Plan plain = planOf(info, {{0, 6, 1, Reason::normal}});
    open(plain, std::make_unique<ScriptedOutput>(script));
    audience.exact(0);
    audience.exact(player->seek(2));
    player->play();
    const auto advanceTo = [&](double time) {
        return [this, &script, time] {
            for (int i = 0; i < 6000 &&
                            [&] {
                                const std::lock_guard lock(audience.mutex);
                                return audience.time < time;
                            }();
                 ++i) {
                script->advance(0.01);
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
            }
            const std::lock_guard lock(audience.mutex);
            return audience.time >= time;
        }();
    };
    ASSERT_TRUE(advanceTo(3));
    // Another look: the picture has another size, the sound goes on.
    bool shown = false;
    Player::Film larger = film(plain, 0.3);
    player->update(std::move(larger), std::nullopt, [&] {
        const std::lock_guard lock(audience.mutex);
        shown = true;
        audience.changed.notify_all();
    });
    ASSERT_TRUE(advanceTo(3.5));
    audience.frame([](const PreviewFrame& one) { return one.image->width == 576; });
    EXPECT_TRUE(audience.until([&] { return shown; }));
    EXPECT_EQ(script->starts, 1);
    // Another film: the moment of the recording stays.
    {
        const std::lock_guard lock(audience.mutex);
        audience.time = -1;
        audience.frames.clear();
    }
    const Plan cut = planOf(info, {{0, 1, 1, Reason::cut}, {1, 6, 2, Reason::manual}});
    player->update(film(cut));
    audience.frame([](const PreviewFrame& one) { return one.image->width == 288; });
    {
        const std::lock_guard lock(audience.mutex);
        const auto first = std::find_if(audience.frames.begin(), audience.frames.end(),
                                        [](const PreviewFrame& one) { return one.image->width == 288; });
        if (first != audience.frames.begin()) {
            EXPECT_NEAR(first->seconds, cut.outputTime(std::prev(first)->seconds), 0.02);
        }
        audience.time = -1;
    }
    ASSERT_TRUE(advanceTo(2));
    EXPECT_EQ(script->starts, 2);
    EXPECT_TRUE(audience.playing);
    EXPECT_EQ(audience.turns, 1) << "it never stopped";
    // Paused, a film that is much shorter still shows one of its frames.
    player->pause();
    ASSERT_TRUE(audience.until([&] { return !audience.playing; }));
    const std::uint64_t number =
        player->update(film(planOf(info, {{0, 5.5, 1, Reason::cut}, {5.5, 6, 1, Reason::normal}})), 9);
    EXPECT_NEAR(audience.exact(number).seconds, 29 / 60.0, 1e-9);
}

TEST_F(PlayerTest, EverythingAtOnceEndsWithTheLastWish) {
    makeClip(clip, 3);
    const SourceInfo info = media.sourceInfo(clip);
    auto script = std::make_shared<ScriptedOutput::Script>();
    const Plan plans[] = {
        planOf(info, {{0, 3, 1, Reason::normal}}),
        planOf(info, {{0, 1, 1, Reason::normal}, {1, 2, 8, Reason::idle}, {2, 3, 1, Reason::normal}}),
        planOf(info, {{0, 3, 1, Reason::cut}})};
    std::vector<Player::Film> films;
    for (const Plan& plan : plans)
        films.push_back(film(plan));
    open(plans[0], std::make_unique<ScriptedOutput>(script));
    std::jthread sound([&](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            script->advance(0.01);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    std::mt19937 random(3);
    std::vector<std::jthread> hands;
    for (int hand = 0; hand < 3; ++hand)
        hands.emplace_back([&, seed = random()] {
            std::mt19937 own(seed);
            for (int i = 0; i < 150; ++i) {
                switch (own() % 8) {
                case 0:
                    player->play();
                    break;
                case 1:
                    player->pause();
                    break;
                case 2:
                    player->update(films[own() % 3]);
                    break;
                case 3:
                    std::this_thread::sleep_for(std::chrono::milliseconds(own() % 20));
                    break;
                default:
                    player->seek(static_cast<double>(own() % 400) / 100);
                }
            }
        });
    hands.clear();
    player->pause();
    const std::uint64_t last = player->update(films[0], 2.5);
    EXPECT_NEAR(audience.exact(last).seconds, 2.5, 1e-9);
    EXPECT_FALSE(audience.playing);
    EXPECT_EQ(audience.failure, "");
    player.reset(); // and it ends in the middle of things
    open(plans[0], std::make_unique<ScriptedOutput>(script));
    player->play();
    player.reset();
}

TEST_F(PlayerTest, TellsWhenThereAreNoPictures) {
    makeClip(clip, 1);
    const Plan plan = planOf(media.sourceInfo(clip), {{0, 1, 1, Reason::normal}});
    const auto file = folder / "none.mp4";
    EXPECT_THROW(Preview::build(media, file, plan, project, std::nullopt, std::nullopt), RecordingError);
    // The pictures are overwritten behind the index.
    ffmpeg("-f lavfi -i testsrc2=s=320x180:r=60:d=1 -c:v libx264 -movflags +faststart " + file.string());
    const auto size = std::filesystem::file_size(file);
    std::FILE* stream = std::fopen(file.c_str(), "r+b");
    std::fseek(stream, static_cast<long>(size / 4), SEEK_SET);
    for (auto i = size / 4; i < size; ++i)
        std::fputc(0, stream);
    std::fclose(stream);
    clip = file;
    try {
        open(plan);
    } catch (const RecordingError&) {
        return; // told already when it was opened
    }
    ASSERT_TRUE(audience.until([&] { return !audience.failure.empty() || !audience.frames.empty(); }));
}
