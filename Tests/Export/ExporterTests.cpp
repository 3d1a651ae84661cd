#include "RecordCore/Export/Exporter.h"

#include "RecordCore/Export/LoadedRecording.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/Media/Clips.h"
#include "Tests/Support/RealMedia.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <utility>

using namespace RecordCore;

namespace {

/// The real encoder, watched.
class WatchedEncoder final : public VideoEncoder {
public:
    WatchedEncoder(std::unique_ptr<VideoEncoder> encoder, std::function<void()> onFrame) :
        encoder(std::move(encoder)), onFrame(std::move(onFrame)) {}

    const StreamDescription& description() const override { return encoder->description(); }
    std::string name() const override { return encoder->name(); }
    void encode(const PlanarView& picture, std::int64_t pts, const FrameHints& hints) override {
        onFrame();
        encoder->encode(picture, pts, hints);
    }
    void repeat(std::int64_t pts) override {
        onFrame();
        encoder->repeat(pts);
    }
    void finish(std::int64_t endPts) override { encoder->finish(endPts); }

private:
    std::unique_ptr<VideoEncoder> encoder;
    std::function<void()> onFrame;
};

/// The real media layer on a machine that may have a hardware encoder: it is libx264 again, called otherwise.
class Machine final : public RealMedia {
public:
    bool hasHardware = false;
    std::function<void()> onFrame = [] {};
    mutable std::vector<VideoSettings> asked;

    std::unique_ptr<VideoEncoder> makeVideoEncoder(const VideoSettings& settings,
                                                   PacketSink sink) const override {
        asked.push_back(settings);
        if (settings.hardware && !hasHardware) throw RecordingError("no hardware encoder");
        return std::make_unique<WatchedEncoder>(RealMedia::makeVideoEncoder(settings, std::move(sink)),
                                                onFrame);
    }
};

/// A recording of four seconds in which something moves all the time.
class Films : public testing::Test {
protected:
    void SetUp() override {
        ffmpeg("-f lavfi -i testsrc2=size=320x180:rate=30:duration=4 -c:v libx264 -preset ultrafast "
               "-pix_fmt yuv420p -g 30 " +
               (folder / "recording.mp4").string());
        const LoadedRecording recording = LoadedRecording::load(machine, folder.path());
        source = recording.files.video();
        plan = recording.plan();
        options.project = recording.project;
        options.scale = 0.125;
    }

    ExportStats film(const Exporter::Hooks& hooks = {}) {
        return Exporter::run(machine, source, plan, options, file, hooks);
    }

    TemporaryFolder folder;
    Machine machine;
    std::filesystem::path source;
    std::filesystem::path file = folder / "film.mp4";
    Plan plan;
    ExportOptions options;
};

TEST_F(Films, SayWhatEncodedThem) {
    for (const bool available : {false, true})
        for (const bool wanted : {false, true}) {
            machine.hasHardware = available;
            machine.asked.clear();
            options.hardware = wanted;
            const ExportStats stats = film();
            EXPECT_EQ(stats.frames, 240);
            EXPECT_EQ(stats.hardware, available && wanted);
            EXPECT_EQ(stats.encoder, "libx264 superfast");
            EXPECT_EQ(machine.asked.size(), wanted && !available ? 2U : 1U);
            EXPECT_EQ(machine.asked.back().hardware, available && wanted);
            EXPECT_EQ(machine.asked.back().forecast.size(), 240U);
        }
}

TEST_F(Films, AreForecastFromTheIndexOfTheRecording) {
    const auto stored = machine.openVideo(source)->stored();
    ASSERT_EQ(stored.size(), 120U);
    double bits = 0;
    for (std::size_t i = 0; i < stored.size(); ++i) {
        EXPECT_NEAR(stored[i].time, static_cast<double>(i) / 30, 1e-6);
        EXPECT_EQ(stored[i].key, i % 30 == 0);
        bits += stored[i].bits;
    }
    const double packets = std::stod(ffprobe("-show_entries stream=bit_rate " + source.string())) * 4;
    EXPECT_NEAR(bits, packets, packets * 0.001);
}

TEST_F(Films, StopSoonAfterBeingTold) {
    const auto files = [&] { return std::distance(std::filesystem::directory_iterator(folder.path()), {}); };
    const auto before = files();
    std::atomic<bool> cancel{false};
    int frames = 0;
    int after = 0;
    machine.onFrame = [&] {
        if (cancel) ++after;
        if (++frames == 100) cancel = true;
    };
    Exporter::Hooks hooks;
    hooks.cancel = &cancel;
    options.hardware = false;
    try {
        film(hooks);
        ADD_FAILURE() << "the film was finished";
    } catch (const RecordingError& error) {
        EXPECT_STREQ(error.what(), "cancelled");
    }
    EXPECT_LE(after, 1); // the frame that was under way
    EXPECT_FALSE(std::filesystem::exists(file));
    EXPECT_EQ(files(), before);
}

TEST_F(Films, FailWithWhatWentWrong) {
    int frames = 0;
    machine.onFrame = [&] {
        if (++frames == 50) throw RecordingError("the encoder broke");
    };
    options.hardware = false;
    try {
        film();
        ADD_FAILURE() << "the film was finished";
    } catch (const RecordingError& error) {
        EXPECT_STREQ(error.what(), "the encoder broke");
    }
    EXPECT_EQ(frames, 50);
    EXPECT_FALSE(std::filesystem::exists(file));
}

} // namespace
