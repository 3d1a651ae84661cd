#include "RecordCore/Export/Exporter.h"

#include "RecordCore/Export/LoadedRecording.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/Media/Clips.h"
#include "Tests/Support/RealMedia.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <fstream>
#include <iterator>
#include <mutex>
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
    void repeat(const PlanarView& picture, std::int64_t pts) override {
        onFrame();
        encoder->repeat(picture, pts);
    }
    void finish(std::int64_t endPts) override { encoder->finish(endPts); }
    bool makesParts() const override { return encoder->makesParts(); }
    EncodingTally tally() const override { return encoder->tally(); }
    void setElsewhere(const EncodingTally& others) override { encoder->setElsewhere(others); }

private:
    std::unique_ptr<VideoEncoder> encoder;
    std::function<void()> onFrame;
};

/// The real decoder, watched.
class WatchedReader final : public VideoReader {
public:
    WatchedReader(std::unique_ptr<VideoReader> reader, std::function<void(double)> onRead) :
        reader(std::move(reader)), onRead(std::move(onRead)) {}

    const SourceInfo& info() const override { return reader->info(); }
    std::optional<VideoFrame> next() override {
        auto frame = reader->next();
        if (frame) onRead(frame->time);
        return frame;
    }
    void seek(double seconds) override { reader->seek(seconds); }
    void skipTo(double seconds) override { reader->skipTo(seconds); }
    std::optional<SeekCost> seekCost(double seconds) const override { return reader->seekCost(seconds); }
    std::vector<Stored> stored() const override { return reader->stored(); }

private:
    std::unique_ptr<VideoReader> reader;
    std::function<void(double)> onRead;
};

/// The real media layer on a machine that may have a hardware encoder: it is libx264 again, called otherwise.
class Machine final : public RealMedia {
public:
    bool hasHardware = false;
    std::function<void()> onHardwareFrame = [] {};
    std::function<void()> onFrame = [] {}; ///< called by several threads
    std::function<void()> onOpen = [] {};
    std::function<void(double)> onRead = [](double) {};
    mutable std::mutex mutex;
    mutable std::vector<VideoSettings> asked;

    std::unique_ptr<VideoReader> openVideo(const std::filesystem::path& file, int threads) const override {
        onOpen();
        return std::make_unique<WatchedReader>(RealMedia::openVideo(file, threads), onRead);
    }
    std::unique_ptr<VideoEncoder> makeVideoEncoder(const VideoSettings& settings,
                                                   PacketSink sink) const override {
        {
            const std::lock_guard lock(mutex);
            asked.push_back(settings);
        }
        if (settings.hardware && !hasHardware) throw RecordingError("no hardware encoder");
        return std::make_unique<WatchedEncoder>(RealMedia::makeVideoEncoder(settings, std::move(sink)),
                                                settings.hardware ? onHardwareFrame : onFrame);
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
        return Exporter::run(machine, source, plan, options, file, hooks, sharing);
    }

    std::string contents() const {
        std::ifstream stream(file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    TemporaryFolder folder;
    Machine machine;
    std::filesystem::path source;
    std::filesystem::path file = folder / "film.mp4";
    Plan plan;
    ExportOptions options;
    Exporter::Sharing sharing;
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
    const auto stored = machine.openVideo(source, 1)->stored();
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

/// A recording with sound whose film has everything that could differ where ranges meet.
class LongFilms : public Films {
protected:
    void SetUp() override {
        // Half of the time nothing moves.
        ffmpeg("-f lavfi -i testsrc2=size=320x180:rate=30:duration=14 -f lavfi -i "
               "sine=frequency=440:duration=14 -vf \"select='lt(mod(t,4),2)'\" -fps_mode vfr -c:v libx264 "
               "-preset ultrafast -pix_fmt yuv420p -g 20 -c:a aac " +
               (folder / "recording.mp4").string());
        Project project;
        project.cuts = {{3, 3.7}};
        project.speedBlocks = {SpeedBlock::make(5, 8, 3, SpeedSegment::Reason::manual)};
        project.zoomBlocks = {ZoomBlock::make(1, 3, 0.3, 0.3, 1.8), ZoomBlock::make(8.5, 12, 0.6, 0.5, 1.5)};
        project.showClock = true;
        project.save(folder / "project.json");
        const LoadedRecording recording = LoadedRecording::load(machine, folder.path());
        source = recording.files.video();
        plan = recording.plan();
        options.project = recording.project;
        options.scale = 0.2;
        options.hardware = false;
    }
};

TEST_F(LongFilms, StopSoonAfterBeingTold) {
    const auto files = [&] { return std::distance(std::filesystem::directory_iterator(folder.path()), {}); };
    const auto before = files();
    for (const int workers : {1, 3}) {
        sharing = {workers, 1};
        std::atomic<bool> cancel{false};
        std::atomic<int> frames{0};
        std::atomic<int> after{0};
        machine.onFrame = [&] {
            if (cancel) ++after;
            if (++frames == 150) cancel = true;
        };
        Exporter::Hooks hooks;
        hooks.cancel = &cancel;
        try {
            film(hooks);
            ADD_FAILURE() << "the film was finished";
        } catch (const RecordingError& error) {
            EXPECT_STREQ(error.what(), "cancelled");
        }
        EXPECT_LE(after, workers); // the frames that were under way
        EXPECT_FALSE(std::filesystem::exists(file));
        EXPECT_EQ(files(), before);
    }
}

TEST_F(Films, AreGivenUpWhileTheyAreSetUp) {
    std::atomic<bool> cancel{false};
    Exporter::Hooks hooks;
    hooks.cancel = &cancel;
    machine.onOpen = [&] { cancel = true; };
    try {
        film(hooks);
        ADD_FAILURE() << "the film was made";
    } catch (const RecordingError& error) {
        EXPECT_STREQ(error.what(), "cancelled");
    }
    EXPECT_TRUE(machine.asked.empty()) << "no encoder was opened any more";
    EXPECT_FALSE(std::filesystem::exists(file));
}

TEST_F(Films, TellHowMuchIsDone) {
    std::vector<double> shares;
    Exporter::Hooks hooks;
    hooks.progress = [&](double share) { shares.push_back(share); };
    EXPECT_EQ(film(hooks).frames, 240);
    ASSERT_FALSE(shares.empty());
    EXPECT_GT(shares.front(), 0);
    EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
    EXPECT_EQ(shares.back(), 1);
}

TEST_F(LongFilms, FailWithWhatWentWrong) {
    for (const int workers : {1, 4}) {
        sharing = {workers, 1};
        std::atomic<int> frames{0};
        machine.onFrame = [&] {
            if (++frames == 150) throw RecordingError("the encoder broke");
        };
        try {
            film();
            ADD_FAILURE() << "the film was finished";
        } catch (const RecordingError& error) {
            EXPECT_STREQ(error.what(), "the encoder broke");
        }
        EXPECT_GE(frames, 150);
        EXPECT_FALSE(std::filesystem::exists(file));

        // The decoder in the middle of the film; the other ranges end with it.
        machine.onFrame = [] {};
        machine.onRead = [](double time) {
            if (time > 2.5) throw RecordingError("recording.mp4: cannot be read");
        };
        try {
            film();
            ADD_FAILURE() << "the film was finished";
        } catch (const RecordingError& error) {
            EXPECT_STREQ(error.what(), "recording.mp4: cannot be read");
        }
        EXPECT_FALSE(std::filesystem::exists(file));
        machine.onRead = [](double) {};
    }
}

TEST_F(LongFilms, AreTheSameWithAnyNumberOfWorkers) {
    sharing = {1, 1};
    double last = 0;
    Exporter::Hooks hooks;
    hooks.progress = [&](double share) {
        EXPECT_GE(share, last);
        last = share;
    };
    const ExportStats alone = film(hooks);
    EXPECT_EQ(last, 1);
    ASSERT_GE(machine.asked.size(), 5U);
    const std::string expected = contents();
    for (const int workers : {2, 3, 5}) {
        sharing.workers = workers;
        last = 0;
        const ExportStats stats = film(hooks);
        EXPECT_EQ(last, 1);
        EXPECT_EQ(stats.frames, alone.frames);
        EXPECT_EQ(stats.repeated, alone.repeated);
        EXPECT_TRUE(contents() == expected) << workers << " workers";
    }
    EXPECT_GT(alone.repeated, 50);

    // Another division into ranges is another film, but shows the same frames.
    sharing = {1, 100};
    const ExportStats whole = film();
    EXPECT_EQ(whole.frames, alone.frames);
    EXPECT_FALSE(contents() == expected);
}

// Drivers open and give up later.
TEST_F(Films, AreMadeInSoftwareWhenTheHardwareFailsOnTheWay) {
    options.hardware = false;
    film();
    const std::string expected = contents();
    machine.hasHardware = true;
    options.hardware = true;
    int frames = 0;
    machine.onHardwareFrame = [&] {
        if (++frames == 100) throw RecordingError("the device is gone");
    };
    const ExportStats stats = film();
    EXPECT_FALSE(stats.hardware);
    EXPECT_EQ(stats.frames, 240);
    EXPECT_TRUE(contents() == expected);

    // What is not the encoder's fault is not tried twice.
    frames = 100;
    machine.asked.clear();
    machine.onRead = [](double) { throw RecordingError("the disk is gone"); };
    EXPECT_THROW(film(), RecordingError);
    EXPECT_EQ(machine.asked.size(), 1U);
}

TEST_F(LongFilms, InHardwareAreMadeInOneGo) {
    machine.hasHardware = true;
    options.hardware = true;
    sharing = {3, 1};
    EXPECT_TRUE(film().hardware);
    ASSERT_EQ(machine.asked.size(), 1U);
    EXPECT_FALSE(machine.asked[0].part);
}

} // namespace
