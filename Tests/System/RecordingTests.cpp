// The program itself records real screens; what comes out of its files is looked at.

#include "RecordCore/Capture/RecordingJournal.h"
#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"
#include "RecordCore/Model/ActivitySample.h"
#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/InputLog.h"
#include "RecordCore/Model/RecordingFiles.h"
#include "Tests/System/NumberedPicture.h"
#include "Tests/System/PipeWireSession.h"
#include "Tests/System/PulseDaemon.h"
#include "Tests/System/XSession.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <numbers>
#include <random>
#include <sys/stat.h>
#include <thread>

using namespace RecordCore;
using Kind = InputLog::Event::Kind;

namespace {

const char* program() {
    const char* other = std::getenv("OMBREL_RECORD_PROGRAM");
    return other != nullptr ? other : OMBREL_RECORD_PROGRAM;
}

class Recording : public testing::Test {
protected:
    void SetUp() override {
        if (!XSession::installed()) GTEST_SKIP() << "Xvfb, openbox and xrandr are not all installed";
        session = std::make_unique<XSession>(800, 600);
    }

    /// Starts `record` and waits until everything runs: there are frames and a pointer.
    ChildProcess& record(std::vector<std::string> options = {}) {
        std::vector<std::string> command{program(), "record", "-o", files.folder.string()};
        command.insert(command.end(), options.begin(), options.end());
        recorder.emplace(command, ChildProcess::Options{{}, output});
        EXPECT_TRUE(eventually(20, [this] {
            if (!std::filesystem::exists(files.journal())) return false;
            const auto contents = JournalContents::read(files.journal());
            return contents.origin.has_value() && !contents.cursor.empty();
        })) << said();
        return *recorder;
    }
    /// Ctrl-C, and the program's status.
    int stop() {
        ::kill(recorder->id(), SIGINT);
        return recorder->wait();
    }
    std::string said() { return std::filesystem::exists(output) ? readFile(output) : std::string(); }

    /// A plain file has its index before the pictures and no fragments.
    static bool plain(const std::filesystem::path& movie) {
        const std::string bytes = readFile(movie);
        return bytes.find("moov") < bytes.find("mdat") && bytes.find("moof") == std::string::npos;
    }
    /// Decodes the whole movie: the time and the luma of one pixel in each of its frames.
    std::vector<std::pair<double, int>> luma(int x, int y) {
        std::vector<std::pair<double, int>> values;
        const auto reader = FFmpeg::openVideo(files.video(), 1);
        while (const auto frame = reader->next())
            values.emplace_back(frame->time, frame->picture.planes[0][y * frame->picture.strides[0] + x]);
        return values;
    }
    void expectComplete() {
        EXPECT_TRUE(plain(files.video()));
        EXPECT_NO_THROW(static_cast<void>(InputLog::load(files.input())));
        EXPECT_NO_THROW(static_cast<void>(loadActivity(files.activity())));
        EXPECT_FALSE(std::filesystem::exists(files.journal()));
    }

    TemporaryFolder folder;
    RecordingFiles files{folder / "recording"};
    std::filesystem::path output = folder / "said";
    std::unique_ptr<XSession> session;
    std::optional<ChildProcess> recorder;
};

/// Draws noise into a window, at the pace of a video.
class Busy {
public:
    explicit Busy(TestWindow& window) :
        thread([&window](const std::stop_token& stop) {
            std::mt19937 random(1);
            while (!stop.stop_requested()) {
                for (int i = 0; i < 150; ++i)
                    window.draw(random() & 0xFFFFFF, static_cast<int>(random() % 500),
                                static_cast<int>(random() % 400), 23, 17);
                window.fill(random() & 0xFFFFFF, 0, 0, 9, 9);
                std::this_thread::sleep_for(std::chrono::milliseconds(15));
            }
        }) {}

private:
    std::jthread thread;
};

/// How loud a tone is in a sound track at some time, as an amplitude. So short a piece does not mind that a
/// device's clock runs a little fast or slow.
double tone(SoundReader& sound, double from, double frequency) {
    constexpr int count = soundRate / 20;
    std::vector<float> samples(2 * count);
    sound.read(static_cast<std::int64_t>(from * soundRate), samples);
    double real = 0, imaginary = 0;
    for (int i = 0; i < count; ++i) {
        const double phase = 2 * std::numbers::pi * frequency * i / soundRate;
        const auto sample = static_cast<double>(samples[static_cast<std::size_t>(2 * i)]);
        real += sample * std::cos(phase);
        imaginary += sample * std::sin(phase);
    }
    return std::hypot(real, imaginary) * 2 / count;
}

} // namespace

/// The median distance of what happened from when it should have: a machine that is busy with other tests may
/// delay one or the other, swallow it or cut it in two, but not move them all.
double usualDistance(const std::vector<double>& happened, const std::vector<InputLog::Event>& clicks) {
    if (happened.empty() || clicks.empty()) return 1e9;
    std::vector<double> distances;
    for (const auto& click : clicks) {
        double nearest = 1e9;
        for (const double time : happened)
            nearest = std::min(nearest, std::abs(time - click.t));
        distances.push_back(nearest);
    }
    std::nth_element(distances.begin(), distances.begin() + static_cast<std::ptrdiff_t>(clicks.size() / 2),
                     distances.end());
    return distances[clicks.size() / 2];
}

/// Seconds at which sound begins after a tenth of a second without.
std::vector<double> onsets(SoundReader& sound) {
    std::vector<float> samples(2 * static_cast<std::size_t>(sound.end()));
    sound.read(0, samples);
    std::vector<double> found;
    std::size_t quiet = 0;
    for (std::size_t i = 0; i < samples.size(); i += 2) {
        if (std::abs(samples[i]) > 0.2F) {
            if (quiet > soundRate / 10) found.push_back(static_cast<double>(i / 2) / soundRate);
            quiet = 0;
        } else {
            ++quiet;
        }
    }
    return found;
}

std::vector<InputLog::Event> clicksOf(const InputLog& log) {
    std::vector<InputLog::Event> clicks;
    for (const auto& event : log.events)
        if (event.kind == Kind::click) clicks.push_back(event);
    return clicks;
}

TEST_F(Recording, ClicksAndWhatTheyDoOnTheScreenAndInTheSoundAgree) {
    std::optional<PulseDaemon> daemon;
    if (PulseDaemon::installed()) daemon.emplace();
    std::vector<std::string> command{OMBREL_FLASH_PROGRAM, "100", "80", "400", "300"};
    if (daemon) command.emplace_back("beep");
    ChildProcess flash(command, {});
    ASSERT_TRUE(eventually(10, [this] {
        session->movePointer(150, 180);
        const XcbReply<xcb_query_pointer_reply_t> over(xcb_query_pointer_reply(
            session->connection().get(),
            xcb_query_pointer(session->connection().get(), session->connection().root()), nullptr));
        return over && over->child != XCB_WINDOW_NONE;
    }));
    record(daemon ? std::vector<std::string>{"--system-sound"} : std::vector<std::string>());
    constexpr int count = 9;
    for (int i = 0; i < count; ++i) {
        session->movePointer(150 + 30 * i, 180);
        session->click(1);
        std::this_thread::sleep_for(std::chrono::milliseconds(230 + 13 * i)); // at no beat of the frames
    }
    ASSERT_EQ(stop(), 0) << said();
    expectComplete();

    const InputLog log = InputLog::load(files.input());
    const auto clicks = clicksOf(log);
    ASSERT_EQ(clicks.size(), static_cast<std::size_t>(count));
    std::vector<double> flashes;
    int before = 0;
    for (const auto& [time, value] : luma(300, 300)) {
        if (std::abs(value - before) > 100 && before != 0) flashes.push_back(time);
        before = value;
    }
    for (std::size_t i = 0; i < clicks.size(); ++i) {
        EXPECT_EQ(*clicks[i].x, (150 + 30 * static_cast<double>(i)) / 800);
        EXPECT_EQ(*clicks[i].y, 180.0 / 600);
    }
    const double seen = usualDistance(flashes, clicks);
    EXPECT_LE(seen, 0.025);
    RecordProperty("flashMilliseconds", std::to_string(seen * 1000));
    if (daemon) {
        const double heard = usualDistance(onsets(*FFmpeg::openSound(files.video()).front()), clicks);
        EXPECT_LE(heard, 0.025);
        RecordProperty("beepMilliseconds", std::to_string(heard * 1000));
    }

    // The pointer's track leads through the clicks, and the pointer is not in the picture: where it stood,
    // the window is as plain as beside it.
    for (const auto& click : clicks)
        EXPECT_TRUE(std::any_of(log.cursor.begin(), log.cursor.end(), [&click](const auto& sample) {
            return sample.x == *click.x && std::abs(sample.t - click.t) < 0.2;
        }));
    const auto under = luma(150 + 30 * (count - 1) + 2, 183);
    EXPECT_NEAR(under.back().second, luma(300, 300).back().second, 3);
}

TEST_F(Recording, ClicksOnAWindowStandWhereTheyStandInItsPicture) {
    ChildProcess flash({OMBREL_FLASH_PROGRAM, "120", "90", "301", "201", "managed"}, {});
    X11Connection& line = session->connection();
    const xcb_atom_t list = line.atom("_NET_CLIENT_LIST");
    std::vector<std::uint32_t> windows;
    ASSERT_TRUE(eventually(10, [&] {
        windows = line.values(line.root(), list, XCB_ATOM_WINDOW);
        return windows.size() == 1;
    }));
    const auto corner = [&] {
        const XcbReply<xcb_translate_coordinates_reply_t> origin(xcb_translate_coordinates_reply(
            line.get(), xcb_translate_coordinates(line.get(), windows[0], line.root(), 0, 0), nullptr));
        return origin ? std::pair<int, int>(origin->dst_x, origin->dst_y) : std::pair(0, 0);
    };
    record({"--window", std::to_string(windows[0])});
    const auto [left, top] = corner();
    // A hand stays for a moment where it clicked: an event tells no place, the pointer is asked for it.
    const auto clickAt = [&](int x, int y) {
        session->movePointer(x, y);
        session->click(1);
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
    };
    clickAt(left + 7, top + 11);
    clickAt(5, 5); // not on the window: no click of it
    session->movePointer(left + 250, top + 150);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    ASSERT_EQ(stop(), 0) << said();
    expectComplete();
    const auto clicks = clicksOf(InputLog::load(files.input()));
    ASSERT_EQ(clicks.size(), 1U);

    // The white inside of the window, in the picture's pixels.
    const auto reader = FFmpeg::openVideo(files.video(), 1);
    int x = -1, y = -1, width = 0, height = 0;
    while (auto frame = reader->next()) {
        const PlanarView& picture = frame->picture;
        width = picture.width;
        height = picture.height;
        const auto white = [&](int px, int py) {
            return picture.planes[0][py * picture.strides[0] + px] > 200;
        };
        // From the middle to the left and up, so that no title is in the way.
        if (!white(width / 2, height - 60)) continue;
        for (x = width / 2; x > 0 && white(x - 1, height - 60); --x) {
        }
        for (y = height - 60; y > 0 && white(width / 2, y - 1); --y) {
        }
    }
    ASSERT_GE(x, 0) << "never white";
    EXPECT_NEAR(*clicks[0].x * width, x + 7, 1e-6);
    EXPECT_NEAR(*clicks[0].y * height, y + 11, 1e-6);
}

TEST_F(Recording, TheCameraStandsBesideTheScreenInTime) {
    if (!PipeWireSession::installed())
        GTEST_SKIP() << "pipewire, wireplumber or dbus-daemon is not installed";
    PipeWireSession cameras;
    cameras.plugCamera("cam", "yuyv", 640, 480, 30);
    record({"--camera"});
    ASSERT_TRUE(eventually(20, [this] { return JournalContents::read(files.journal()).camera.has_value(); }))
        << said();
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    const double origin = *JournalContents::read(files.journal()).origin;
    ASSERT_EQ(stop(), 0) << said();
    expectComplete();
    const InputLog log = InputLog::load(files.input());
    ASSERT_TRUE(log.cameraOffset);
    const auto taken = cameras.taken("cam");
    const auto reader = FFmpeg::openVideo(files.camera(), 1);
    std::vector<double> errors;
    while (const auto frame = reader->next()) {
        const auto moment = taken.find(readNumber(frame->picture));
        ASSERT_NE(moment, taken.end());
        errors.push_back(std::abs(origin + *log.cameraOffset + frame->time - moment->second));
    }
    ASSERT_GE(errors.size(), 15U);
    EXPECT_LT(*std::max_element(errors.begin(), errors.end()), 0.001);
}

TEST_F(Recording, KeysAreMomentsAndScrollsAreThinned) {
    record();
    session->movePointer(400, 300);
    for (const char letter : {'s', 'e', 'c', 'r', 'e', 't'})
        session->typeKey(letter);
    for (int i = 0; i < 40; ++i) {
        session->click(5);
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    ASSERT_EQ(stop(), 0) << said();
    const InputLog log = InputLog::load(files.input());
    EXPECT_EQ(log.keysTracked, true);
    EXPECT_EQ(log.cursorInVideo, false);
    int keys = 0;
    std::vector<double> scrolls;
    for (const auto& event : log.events) {
        if (event.kind == Kind::key) {
            ++keys;
            EXPECT_FALSE(event.x || event.y);
        }
        if (event.kind == Kind::scroll) scrolls.push_back(event.t);
    }
    EXPECT_EQ(keys, 6);
    ASSERT_GE(scrolls.size(), 4U);
    EXPECT_LE(scrolls.size(), (scrolls.back() - scrolls.front()) / 0.1 + 1);
    for (std::size_t i = 1; i < scrolls.size(); ++i)
        EXPECT_GT(scrolls[i] - scrolls[i - 1], 0.1);
}

TEST_F(Recording, IsForItsOwnerOnlyAndNeverOverwritesAnother) {
    TestWindow window(*session, "busy", 50, 50, 500, 400, 0x808080);
    record({"--seconds", "1.5"});
    window.fill(0xFFFFFF);
    EXPECT_EQ(recorder->wait(), 0) << said();
    expectComplete();
    struct stat facts {};
    for (const auto& file : {files.video(), files.input(), files.activity()}) {
        ASSERT_EQ(stat(file.c_str(), &facts), 0);
        EXPECT_EQ(facts.st_mode & 0777, 0600) << file;
    }
    ASSERT_EQ(stat(files.folder.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777, 0700);
    EXPECT_NEAR(FFmpeg::sourceInfo(files.video()).duration, 1.5, 0.5);
    const std::string bytes = readFile(files.video());
    EXPECT_EQ(
        ChildProcess::run({program(), "record", "-o", files.folder.string(), "--seconds", "1"}, {{}, output}),
        1);
    EXPECT_THAT(said(), testing::HasSubstr("holds a recording already"));
    EXPECT_EQ(readFile(files.video()), bytes);
}

TEST_F(Recording, AWindowThatClosesEndsItAndKeepsIt) {
    TestWindow window(*session, "closes", 50, 50, 500, 401, 0x808080);
    record({"--window", std::to_string(window.id())});
    window.fill(0xFFFFFF);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    window.close();
    EXPECT_EQ(recorder->wait(), 1);
    EXPECT_THAT(said(), testing::HasSubstr("recording stopped: the window was closed"));
    expectComplete();
    EXPECT_GE(luma(100, 100).size(), 1U);
}

// Whatever the threads were asking the server for when it froze.
TEST_F(Recording, StopsThoughTheServerHangs) {
    TestWindow window(*session, "busy", 50, 50, 500, 400, 0x808080);
    for (const bool ofWindow : {false, true}) {
        SCOPED_TRACE(ofWindow ? "window" : "display");
        files = RecordingFiles{folder / (ofWindow ? "window" : "display")};
        std::vector<std::string> options;
        if (ofWindow) options = {"--window", std::to_string(window.id())};
        const Busy busy(window);
        record(options);
        session->freeze();
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        ::kill(recorder->id(), SIGTERM);
        const bool stopped = eventually(30, [this] { return !recorder->running(); });
        session->thaw();
        ASSERT_TRUE(stopped);
        EXPECT_EQ(recorder->wait(), 0) << said();
        expectComplete();
    }
}

TEST_F(Recording, DoesNotWaitForAServerThatHangsFromTheStart) {
    session->freeze();
    ChildProcess waiting({program(), "record", "-o", files.folder.string()}, {{}, output});
    const bool ended = eventually(60, [&] { return !waiting.running(); });
    session->thaw();
    ASSERT_TRUE(ended);
    EXPECT_EQ(waiting.wait(), 1);
    EXPECT_THAT(said(),
                testing::HasSubstr("no display: the X server " + session->display() + " does not answer"));
    EXPECT_FALSE(std::filesystem::exists(files.video()));
}

// OMBREL_KILLS says how many times; each takes some seconds.
TEST_F(Recording, AKillAtAnyMomentLosesAtMostASecond) {
    const char* wanted = std::getenv("OMBREL_KILLS");
    const int kills = wanted != nullptr ? std::atoi(wanted) : 4;
    std::random_device seed;
    std::mt19937 random(seed());
    TestWindow window(*session, "busy", 50, 50, 600, 500, 0x808080);
    double worst = 0;
    for (int i = 0; i < kills; ++i) {
        std::optional<Busy> busy;
        if (i % 2 == 1) busy.emplace(window);
        files = RecordingFiles{folder / ("killed" + std::to_string(i)).c_str()};
        record();
        std::this_thread::sleep_for(std::chrono::milliseconds(300 + random() % 3000));
        session->typeKey('x');
        const double killed = monotonicSeconds();
        recorder->kill();
        busy.reset();
        const double length = killed - *JournalContents::read(files.journal()).origin;

        // Whoever touches the folder next makes it whole.
        EXPECT_EQ(ChildProcess::run({program(), "record", "-o", files.folder.string(), "--seconds", "1"},
                                    {{}, output}),
                  1);
        expectComplete();
        const double kept = FFmpeg::sourceInfo(files.video()).duration;
        EXPECT_LE(length - kept, 1.0) << (busy ? "busy" : "still") << " after " << length << " s";
        const auto frames = luma(100, 100);
        ASSERT_FALSE(frames.empty());
        if (i % 2 == 1) {
            EXPECT_GE(static_cast<double>(frames.size()), 10 * kept);
        }
        const InputLog log = InputLog::load(files.input());
        ASSERT_FALSE(log.cursor.empty());
        EXPECT_LE(length - log.cursor.back().t, 1.0);
        worst = std::max({worst, length - kept, length - log.cursor.back().t});
    }
    RecordProperty("worstLossMilliseconds", std::to_string(worst * 1000));
}

TEST_F(Recording, AFullDiskEndsItCleanlyAndKeepsIt) {
    // A disk of 8 MB, in a name space of its own; what was recorded is copied out of it.
    const auto disk = folder / "disk";
    const auto kept = folder / "kept";
    std::filesystem::create_directory(disk);
    const std::string script = R"(
        mount -t tmpfs -o size=8m none "$1" || exit 77
        "$2" record -o "$1/recording" --seconds 60
        status=$?
        cp -r "$1/recording" "$3"
        exit $status)";
    TestWindow window(*session, "busy", 50, 50, 600, 500, 0x808080);
    const Busy busy(window);
    const int status = ChildProcess::run(
        {"unshare", "-rm", "sh", "-c", script, "sh", disk.string(), program(), kept.string()}, {{}, output});
    if (!std::filesystem::exists(kept)) GTEST_SKIP() << "no disk can be mounted here: " << said();
    EXPECT_EQ(status, 1);
    EXPECT_THAT(said(), testing::HasSubstr("left on the disk")); // the warning
    EXPECT_THAT(said(), testing::HasSubstr("recording stopped: the disk is full"));
    files = RecordingFiles{kept};
    EXPECT_FALSE(std::filesystem::exists(files.journal()));
    const double duration = FFmpeg::sourceInfo(files.video()).duration;
    EXPECT_GT(duration, 1);
    EXPECT_GE(static_cast<double>(luma(100, 100).size()), 10 * duration);
    EXPECT_FALSE(InputLog::load(files.input()).cursor.empty());
    EXPECT_FALSE(loadActivity(files.activity()).empty());
}

TEST_F(Recording, SystemSoundAndMicrophoneAreTracksOfTheirOwn) {
    if (!PulseDaemon::installed() || !ChildProcess::installed("ffmpeg"))
        GTEST_SKIP() << "pulseaudio, pactl and ffmpeg are not all installed";
    PulseDaemon daemon;
    daemon.start();
    daemon.plugMicrophone("microphone");
    const ChildProcess played(
        {"ffmpeg", "-re", "-f", "lavfi", "-i", "sine=frequency=500:sample_rate=48000", "-f", "pulse", "tone"},
        {});
    const ChildProcess spoken({"ffmpeg", "-y", "-re", "-f", "lavfi", "-i",
                               "sine=frequency=900:sample_rate=48000", "-ac", "2", "-f", "s16le",
                               daemon.pipeOf("microphone").string()},
                              {});
    record({"--system-sound", "--microphone", "--seconds", "4"});
    EXPECT_EQ(recorder->wait(), 0) << said();
    expectComplete();
    const auto tracks = FFmpeg::openSound(files.video());
    ASSERT_EQ(tracks.size(), 2U);
    // The generator's tone has an amplitude of 1/8; each track has its own and nothing of the other's.
    EXPECT_GT(tone(*tracks[0], 2, 500), 0.05);
    EXPECT_LT(tone(*tracks[0], 2, 900), 0.01);
    EXPECT_GT(tone(*tracks[1], 2, 900), 0.05);
    EXPECT_LT(tone(*tracks[1], 2, 500), 0.01);
    // As long as the picture.
    const double duration = FFmpeg::sourceInfo(files.video()).duration;
    for (const auto& track : tracks)
        EXPECT_NEAR(static_cast<double>(track->end()) / soundRate, duration, 0.05);
}

TEST_F(Recording, TheSelfTestPassesAndReportsEveryLine) {
    std::optional<PulseDaemon> daemon;
    if (PulseDaemon::installed()) {
        daemon.emplace();
        daemon->start();
        daemon->plugMicrophone("microphone");
    }
    TestWindow window(*session, "a title", 50, 50, 500, 400, 0x808080);
    const Busy busy(window);
    EXPECT_EQ(ChildProcess::run({program(), "--window", "--selftest", files.folder.string()}, {{}, output}),
              0);
    const std::string report = readFile(files.folder / "report.txt");
    std::vector<std::string> patterns{
        "Ombrel Record self-test [-0-9]+ [:0-9]+ [+]0000",
        "screen access: true",
        "accessibility [(]keys[)]: true",
        "displays: 1",
        "window: Test · a title",
        "microphones: .*, permission .*",
        "recorded for [34][.][0-9] s, pointer samples 2[0-9]+, events 0",
        "live analysis: [0-9]+ samples, busiest [01][.][0-9]{3}",
        daemon ? "sound tracks in the file: 2 [(]system audio [+] microphone[)]"
               : "sound tracks in the file: 0",
        daemon ? "file: [34][.][0-9]{2} s, audio true, [0-9]+ KB, [0-9]+ activity samples"
               : "file: [34][.][0-9]{2} s, audio false, [0-9]+ KB, [0-9]+ activity samples",
        "export: [0-9]+ frames, [0-9.]+ s in [0-9.]+ s",
        "PASS"};
    std::string whole;
    for (const std::string& pattern : patterns)
        whole += (whole.empty() ? "" : "\n") + pattern;
    EXPECT_THAT(report, testing::MatchesRegex(whole)) << said();
    EXPECT_GT(FFmpeg::sourceInfo(files.folder / "export.mp4").duration, 1);
    struct stat facts {};
    for (const char* name : {"recording.mp4", "input.json", "export.mp4", "report.txt"}) {
        ASSERT_EQ(stat((files.folder / name).c_str(), &facts), 0);
        EXPECT_EQ(facts.st_mode & 0777, 0600) << name;
    }
}

TEST(SelfTest, SaysThatThereIsNoDisplay) {
    const TemporaryFolder folder;
    ChildProcess::run({"env", "-u", "DISPLAY", program(), "--selftest", folder.path().string()}, {});
    EXPECT_THAT(readFile(folder / "report.txt"), testing::EndsWith("\nFAIL: no display"));
}
