#include "RecordCore/Capture/CameraRecorder.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/Support/RealMedia.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/System/NumberedPicture.h"

#include <gtest/gtest.h>

#include <fstream>
#include <vector>

using namespace RecordCore;

namespace {

/// A camera as a script: pictures are shown by hand.
class ScriptedCamera : public CameraBackend {
public:
    class Stream : public CameraStream {
    public:
        explicit Stream(const ScriptedCamera& owner) : camera(owner) {}
        void start(Handlers handlers) override {
            if (!camera.refusal.empty()) throw RecordingError(camera.refusal);
            camera.handlers = std::move(handlers);
        }
        void stop() override { camera.handlers = {}; }

    private:
        const ScriptedCamera& camera;
    };

    std::vector<CameraDevice> cameras() const override { return {{"cam", "Camera"}}; }
    std::unique_ptr<CameraStream> openCamera(const std::string&) const override {
        return std::make_unique<Stream>(*this);
    }

    void show(std::uint32_t number, double time, int width = 320, int height = 180) const {
        const auto w = static_cast<std::size_t>(width);
        const auto h = static_cast<std::size_t>(height);
        std::vector<std::uint8_t> memory(w * h * 2);
        drawNumber(memory.data(), "i420", width & ~1, height & ~1, number);
        const std::ptrdiff_t row = width & ~1;
        const std::ptrdiff_t rows = height & ~1;
        PlanarView view;
        view.planes = {memory.data(), memory.data() + row * rows, memory.data() + row * rows * 5 / 4};
        view.strides = {row, row / 2, row / 2};
        view.width = width;
        view.height = height;
        handlers.onFrame({view, time});
    }

    std::string refusal;
    mutable CameraStream::Handlers handlers;
};

struct CameraRecorderTest : testing::Test {
    TemporaryFolder folder;
    std::filesystem::path file = folder / "camera.mp4";
    ScriptedCamera camera;
    RealMedia media;

    struct Frame {
        std::uint32_t number;
        double time;
    };
    std::vector<Frame> readBack() const {
        std::vector<Frame> frames;
        const auto reader = media.openVideo(file);
        while (const auto frame = reader->next())
            frames.push_back({readNumber(frame->picture), frame->time});
        return frames;
    }
};

} // namespace

TEST_F(CameraRecorderTest, WritesFramesAtTheTimesTheCameraSawThem) {
    std::ofstream(file) << "an old file";
    CameraRecorder recorder(camera, media);
    recorder.start(file);
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_FALSE(recorder.firstFrameTime());
    std::vector<double> times;
    double time = 5000.123;
    for (std::uint32_t number = 0; number < 90; ++number) {
        times.push_back(time);
        camera.show(number, time);
        time += number % 7 == 0 ? 0.1 : 0.033; // cameras are uneven in the dark
    }
    recorder.stop();
    EXPECT_EQ(recorder.firstFrameTime(), 5000.123);
    EXPECT_EQ(recorder.report().frames, 90);
    EXPECT_EQ(recorder.report().dropped, 0);

    const std::vector<Frame> frames = readBack();
    ASSERT_EQ(frames.size(), 90U);
    for (std::size_t i = 0; i < frames.size(); ++i) {
        EXPECT_EQ(frames[i].number, i);
        EXPECT_NEAR(frames[i].time, times[i] - times[0], 1e-4);
    }
    EXPECT_NEAR(media.sourceInfo(file).duration, times.back() - times[0] + 0.04, 0.01);
}

TEST_F(CameraRecorderTest, DropsWhatDoesNotFit) {
    CameraRecorder recorder(camera, media);
    recorder.start(file);
    camera.show(1, 10.0);
    camera.show(2, 10.1);
    camera.show(3, 10.05);          // late
    camera.show(4, 10.1);           // twice the same time
    camera.show(5, 10.2, 640, 360); // another size
    camera.show(6, 10.3);
    camera.show(7, 10.4, 321, 181); // odd: its even part has the size
    recorder.stop();
    EXPECT_EQ(recorder.report().dropped, 3);
    std::vector<std::uint32_t> numbers;
    for (const Frame& frame : readBack())
        numbers.push_back(frame.number);
    EXPECT_EQ(numbers, (std::vector<std::uint32_t>{1, 2, 6, 7}));
}

TEST_F(CameraRecorderTest, LeavesNoFileWithoutAFrame) {
    CameraRecorder recorder(camera, media);
    recorder.start(file);
    recorder.stop();
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_FALSE(recorder.firstFrameTime());
}

TEST_F(CameraRecorderTest, PassesOnWhyTheCameraDoesNotStart) {
    for (const char* refusal : {"no camera", "camera busy", "camera output"}) {
        camera.refusal = refusal;
        CameraRecorder recorder(camera, media);
        try {
            recorder.start(file);
            ADD_FAILURE();
        } catch (const RecordingError& error) {
            EXPECT_STREQ(error.what(), refusal);
        }
        recorder.stop();
        EXPECT_FALSE(std::filesystem::exists(file));
    }
}

TEST_F(CameraRecorderTest, ReportsAtTheStopWhatWentWrongWithTheFile) {
    CameraRecorder recorder(camera, media);
    recorder.start(folder / "missing" / "camera.mp4");
    camera.show(1, 10.0);
    camera.show(2, 10.1);
    EXPECT_THROW(recorder.stop(), RecordingError);
}

TEST_F(CameraRecorderTest, LosesAtMostASecondWhenItIsCutOff) {
    CameraRecorder recorder(camera, media);
    recorder.start(file);
    const std::filesystem::path cut = folder / "cut.mp4";
    for (std::uint32_t number = 0; number < 200; ++number)
        camera.show(number, 10 + number / 30.0);
    std::filesystem::copy_file(file, cut); // what a crash would leave at this moment
    recorder.stop();
    media.recoverMovie(cut);
    std::uint32_t last = 0;
    const auto reader = media.openVideo(cut);
    while (const auto frame = reader->next())
        last = readNumber(frame->picture);
    EXPECT_GE(last, 199 - 30);
}
