#include "RecordCore/Capture/CapturePicture.h"
#include "RecordCore/Capture/RecordingRecovery.h"
#include "RecordCore/Capture/RecordingSession.h"
#include "RecordCore/Capture/WindowBounds.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/Support/RealMedia.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <string>
#include <thread>

using namespace RecordCore;

namespace {

/// A screen that goes wrong at a chosen place, or shows one picture.
class ScriptedScreen final : public ScreenBackend {
public:
    enum class Fault { none, open, start, input, noFrame };

    explicit ScriptedScreen(Fault fault) : fault(fault) {}

    bool accessGranted() const override { return true; }
    std::vector<DisplayInfo> displays() const override { return {{1, "Display", {0, 0, 64, 48}, true}}; }
    std::vector<WindowInfo> windows() const override { return {}; }
    std::unique_ptr<ScreenStream> openScreen(const ScreenSource&, int) const override {
        if (fault == Fault::open) throw RecordingError("refused");
        return std::make_unique<Stream>(fault);
    }
    std::unique_ptr<InputSource> openInput() const override {
        if (fault == Fault::input) throw RecordingError("refused");
        return std::make_unique<Input>();
    }
    std::unique_ptr<WindowBounds> openBounds(std::uint32_t, int, int) const override { return nullptr; }
    void activate(std::uint32_t) const override {}

private:
    class Stream final : public ScreenStream {
    public:
        explicit Stream(Fault fault) : fault(fault) {}
        int width() const override { return 64; }
        int height() const override { return 48; }
        void start(Handlers handlers) override {
            if (fault == Fault::start) throw RecordingError("refused");
            if (fault == Fault::noFrame) return;
            const CapturePicture picture(64, 48);
            const std::vector<std::uint8_t> all(4 * 3, 1);
            handlers.onFrame({picture.view(), HostClock::system().now(), all});
        }
        void stop() override {}

    private:
        Fault fault;
    };
    class Input final : public InputSource {
    public:
        std::optional<ScreenPoint> pointer() override { return ScreenPoint{32, 24}; }
        bool seesKeys() const override { return true; }
        void interrupt() override { interrupted = true; }
        bool wait(double, const std::function<void(InputSignal)>&) override {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            return !interrupted;
        }

    private:
        std::atomic<bool> interrupted{false};
    };

    Fault fault;
};

} // namespace

TEST(RecordingSession, WhatFailsLeavesNothingBehind) {
    using Fault = ScriptedScreen::Fault;
    const RealMedia media;
    for (const Fault fault : {Fault::none, Fault::open, Fault::start, Fault::input, Fault::noFrame}) {
        for (const bool folderIsThere : {false, true}) {
            SCOPED_TRACE(std::to_string(static_cast<int>(fault)) +
                         (folderIsThere ? ", folder is there" : ""));
            const TemporaryFolder place;
            const std::filesystem::path folder = place / "recording";
            if (folderIsThere) std::filesystem::create_directory(folder);
            const ScriptedScreen screen(fault);
            RecordingSession::Setup setup;
            setup.screen.source = DisplaySource{1};
            RecordingSession session(folder, setup,
                                     {{screen, nullptr, media, HostClock::system(), {}}, nullptr});
            const auto record = [&] {
                session.start();
                session.stop();
            };
            if (fault == Fault::none) {
                record();
                EXPECT_TRUE(std::filesystem::exists(folder / "recording.mp4"));
                EXPECT_TRUE(std::filesystem::exists(folder / "activity.json"));
                EXPECT_FALSE(std::filesystem::exists(folder / "recording.journal"));
            } else {
                EXPECT_THROW(record(), RecordingError);
                EXPECT_EQ(std::filesystem::exists(folder), folderIsThere);
                EXPECT_TRUE(!folderIsThere || std::filesystem::is_empty(folder));
            }
        }
    }
}

TEST(RecordingRecovery, ACameraWithoutAPictureDoesNotStandInTheWay) {
    const RealMedia media;
    const TemporaryFolder place;
    const RecordingFiles files{place / "recording"};
    const ScriptedScreen screen(ScriptedScreen::Fault::none);
    {
        RecordingSession::Setup setup;
        setup.screen.source = DisplaySource{1};
        RecordingSession session(files.folder, setup,
                                 {{screen, nullptr, media, HostClock::system(), {}}, nullptr});
        session.start();
    } // not stopped: as a crash leaves it
    {
        // Its first fragment was still to come.
        VideoSettings settings;
        settings.width = settings.height = 64;
        settings.bitrate = 100'000;
        settings.realTime = true;
        const auto encoder = media.makeVideoEncoder(settings, [](const Packet&) {});
        const auto movie = media.createMovie(files.camera(), MovieLayout::recording);
        movie->addTrack(encoder->description());
        movie->begin();
    }
    ASSERT_TRUE(std::filesystem::exists(files.journal()));
    EXPECT_TRUE(recoverRecording(files.folder, media, {}));
    EXPECT_GT(media.sourceInfo(files.video()).duration, 0);
    EXPECT_FALSE(std::filesystem::exists(files.camera()));
    EXPECT_TRUE(std::filesystem::exists(files.folder / "camera (unreadable).mp4"));
    EXPECT_FALSE(std::filesystem::exists(files.journal()));
}
