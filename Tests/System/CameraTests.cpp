#include "RecordCore/Capture/CameraBackends.h"
#include "RecordCore/Capture/CameraPreview.h"
#include "RecordCore/Capture/CameraRecorder.h"
#include "RecordCore/Capture/PipeWire/PipeWireCameras.h"
#include "RecordCore/Capture/V4L2/V4L2Cameras.h"
#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/Support/RealMedia.h"
#include "Tests/System/NumberedPicture.h"
#include "Tests/System/PipeWireSession.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <mutex>

using namespace RecordCore;

namespace {

#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
constexpr bool sanitized = true; // a frame takes ten times as long
#else
constexpr bool sanitized = false;
#endif
constexpr int enoughFrames = sanitized ? 15 : 90;
constexpr std::size_t mostLoss = sanitized ? 50 : 2; ///< pictures taken for one that is seen

PictureDecoderFactory decoders() {
    return FFmpeg::makePictureDecoder;
}

class Camera : public testing::Test {
protected:
    void SetUp() override {
        if (!PipeWireSession::installed())
            GTEST_SKIP() << "pipewire, wireplumber or dbus-daemon is not installed";
        session.emplace();
    }
    std::optional<PipeWireSession> session;
    PipeWireCameras cameras{decoders()};
};

struct Seen {
    unsigned number = 0;
    double time = 0;
};

/// Everything that a stream shows until it has shown `count` pictures.
struct Watcher {
    std::mutex mutex;
    std::vector<Seen> seen;
    std::array<int, 3> colour{};
    int width = 0;
    int height = 0;
    std::atomic<int> count{0};
    std::atomic<int> ends{0};

    CameraStream::Handlers handlers() {
        return {[this](const CameraFrame& frame) {
                    const std::scoped_lock lock(mutex);
                    seen.push_back({readNumber(frame.picture), frame.time});
                    colour = readColour(frame.picture);
                    width = frame.picture.width;
                    height = frame.picture.height;
                    ++count;
                },
                [this](const std::string&) { ++ends; }};
    }
};

struct TimeError {
    double worst = INFINITY;
    double usual = INFINITY; ///< the median
};

/// How far the times are from those at which the pictures were taken; every number must be one that was
/// taken, and they must rise.
TimeError timeError(const std::vector<Seen>& seen, const std::map<unsigned, double>& taken) {
    std::vector<double> errors;
    for (std::size_t i = 0; i < seen.size(); ++i) {
        const auto found = taken.find(seen[i].number);
        if (found == taken.end() || (i > 0 && seen[i].number <= seen[i - 1].number)) return {};
        errors.push_back(std::abs(found->second - seen[i].time));
    }
    if (errors.empty()) return {};
    std::sort(errors.begin(), errors.end());
    return {errors.back(), errors[errors.size() / 2]};
}

std::string messageOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const RecordingError& error) {
        return error.what();
    }
    return "no error";
}

} // namespace

TEST_F(Camera, DeliversEveryFormatInOurColoursWithItsTimes) {
    struct Case {
        const char* format;
        const char* kind;
        double usual, worst; ///< seconds
    };
    // Without a stamp the time of arrival counts, which is late now and then.
    for (const Case& c :
         {Case{"yuyv", "", 1e-6, 1e-6}, Case{"nv12", "", 1e-6, 1e-6}, Case{"i420", "nostamp", 0.02, 1}}) {
        SCOPED_TRACE(c.format);
        const std::string name = std::string("cam-") + c.format;
        session->plugCamera(name, c.format, 1280, 720, 30, c.kind);
        const std::vector<CameraDevice> listed = cameras.cameras();
        ASSERT_EQ(listed.size(), 1U);
        EXPECT_EQ(listed[0], (CameraDevice{name, "Camera " + name}));

        Watcher watcher;
        const auto stream = cameras.openCamera(name);
        stream->start(watcher.handlers());
        EXPECT_TRUE(eventually(20, [&] { return watcher.count >= enoughFrames / 2; }));
        stream->stop();
        EXPECT_EQ(watcher.width, 1280);
        EXPECT_EQ(watcher.height, 720);
        const TimeError error = timeError(watcher.seen, session->taken(name));
        EXPECT_LT(error.worst, c.worst);
        EXPECT_LT(error.usual, sanitized ? 1 : c.usual);
        // Pictures are missing only when a busy machine makes them late.
        EXPECT_LE(watcher.seen.back().number - watcher.seen.front().number, mostLoss * watcher.seen.size());
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(watcher.colour[i], redInBt709[i], 1) << i;
        session->unplugCameras();
        ASSERT_TRUE(eventually(5, [&] { return cameras.cameras().empty(); }));
    }
}

TEST_F(Camera, IsRecordedWithItsTimes) {
    session->plugCamera("cam", "yuyv", 1280, 720, 30);
    const RealMedia media;
    const TemporaryFolder folder;
    const std::filesystem::path file = folder / "camera.mp4";
    CameraRecorder recorder(cameras, media);
    std::atomic<int> ends{0};
    recorder.onEnd = [&](const std::string&) { ++ends; };
    recorder.start(file);
    ASSERT_TRUE(eventually(30, [&] { return recorder.report().frames >= enoughFrames; }));
    session->unplugCameras(); // what was recorded until then stays
    ASSERT_TRUE(eventually(5, [&] { return ends == 1; }));
    recorder.stop();

    std::vector<Seen> frames;
    std::array<int, 3> colour{};
    const auto reader = media.openVideo(file);
    EXPECT_EQ(reader->info().width, 1280);
    while (const auto frame = reader->next()) {
        frames.push_back({readNumber(frame->picture), *recorder.firstFrameTime() + frame->time});
        colour = readColour(frame->picture);
    }
    EXPECT_EQ(frames.size(), static_cast<std::size_t>(recorder.report().frames));
    EXPECT_LT(timeError(frames, session->taken("cam")).worst, 1e-4);
    EXPECT_LE(frames.back().number - frames.front().number, mostLoss * frames.size());
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(colour[i], redInBt709[i], 3) << i;
}

TEST_F(Camera, ThatStaysSilentLeavesNoFile) {
    session->plugCamera("cam", "yuyv", 640, 480, 30, "silent");
    const RealMedia media;
    const TemporaryFolder folder;
    CameraRecorder recorder(cameras, media);
    recorder.start(folder / "camera.mp4");
    recorder.stop();
    EXPECT_FALSE(std::filesystem::exists(folder / "camera.mp4"));
}

TEST_F(Camera, TellsWhenItGoes) {
    EXPECT_EQ(messageOf([&] { cameras.openCamera("")->start({}); }), "no camera");
    session->plugCamera("cam", "yuyv", 640, 480, 30);
    EXPECT_EQ(messageOf([&] { cameras.openCamera("another")->start({}); }), "no camera");
    Watcher watcher;
    const auto stream = cameras.openCamera("");
    stream->start(watcher.handlers());
    EXPECT_TRUE(eventually(5, [&] { return watcher.count > 5; }));
    session->unplugCameras();
    EXPECT_TRUE(eventually(5, [&] { return watcher.ends == 1; }));
    stream->stop();
    EXPECT_EQ(watcher.ends, 1);
}

TEST_F(Camera, ShowsItselfBeforeARecording) {
    session->plugCamera("cam", "nv12", 1280, 720, 30);
    CameraPreview preview(cameras);
    std::atomic<int> shown{0};
    preview.onPicture = [&] { ++shown; };
    preview.start();
    preview.start();
    EXPECT_TRUE(preview.running());
    ASSERT_TRUE(eventually(5, [&] { return shown > 3; }));
    const auto held = preview.picture();
    ASSERT_TRUE(held);
    const unsigned number = readNumber(held->view());
    const int then = shown;
    ASSERT_TRUE(eventually(5, [&] { return shown > then + 3; }));
    EXPECT_EQ(readNumber(held->view()), number); // what is held does not change
    EXPECT_GT(readNumber(preview.picture()->view()), number);
    preview.stop();
    EXPECT_FALSE(preview.running());
    EXPECT_FALSE(preview.picture());
    preview.start();
    EXPECT_TRUE(eventually(5, [&] { return preview.picture() != nullptr; }));
}

TEST_F(Camera, IsReadThroughTheKernelsInterfaceToo) {
    if (sanitized) GTEST_SKIP() << "pw-v4l2 and sanitizers both want to come first";
    if (!ChildProcess::installed("pw-v4l2")) GTEST_SKIP() << "pw-v4l2 is not installed";
    session->plugCamera("cam", "yuyv", 1280, 720, 30);
    TemporaryFolder folder;
    ChildProcess::Options options = session->options("reader.log");
    options.output = folder / "reader.log";
    EXPECT_EQ(ChildProcess::run({"pw-v4l2", OMBREL_CAMERA_READER, "2"}, options), 0);
    std::ifstream log(folder / "reader.log");
    std::vector<Seen> seen;
    std::array<int, 3> colour{};
    for (std::string word; log >> word;) {
        Seen s;
        if (word == "frame" && log >> s.number >> s.time) seen.push_back(s);
        if (word == "colour") log >> colour[0] >> colour[1] >> colour[2];
    }
    EXPECT_GT(seen.size(), 30U);
    EXPECT_LT(timeError(seen, session->taken("cam")).usual, 0.02);
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_NEAR(colour[i], redInBt709[i], 1) << i;
}

TEST(CameraWithoutService, FallsBackAndSaysSo) {
    const TemporaryFolder nothing;
    setenv("PIPEWIRE_RUNTIME_DIR", nothing.path().c_str(), 1);
    const PipeWireCameras alone(decoders());
    EXPECT_EQ(messageOf([&] { static_cast<void>(alone.cameras()); }), "PipeWire is not running");
    std::vector<std::unique_ptr<CameraBackend>> ways;
    ways.push_back(std::make_unique<PipeWireCameras>(decoders()));
    ways.push_back(std::make_unique<V4L2Cameras>(decoders()));
    const CameraBackends all(std::move(ways));
    if (V4L2Cameras(decoders()).cameras().empty()) {
        EXPECT_TRUE(all.cameras().empty());
        EXPECT_EQ(messageOf([&] { all.openCamera("")->start({}); }), "no camera");
    } else {
        EXPECT_EQ(all.cameras(), V4L2Cameras(decoders()).cameras());
    }
    unsetenv("PIPEWIRE_RUNTIME_DIR");
}
