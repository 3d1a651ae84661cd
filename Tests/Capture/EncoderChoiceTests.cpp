#include "RecordCore/Capture/EncoderChoice.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/Support/RealMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <ctime>
#include <thread>

using namespace RecordCore;

namespace {

/// How an encoder of the simulated machine behaves. What needs a graphics card cannot be had here.
enum class Encoder { missing, broken, holdsBack, slow, fast };

double processTime() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

class SimulatedEncoder final : public VideoEncoder {
public:
    SimulatedEncoder(std::string name, Encoder kind, double frameRate, PacketSink sink) :
        label(std::move(name)), kind(kind), frameRate(frameRate), sink(std::move(sink)) {}
    const StreamDescription& description() const override { return stream; }
    std::string name() const override { return label; }
    void encode(const PlanarView&, std::int64_t pts, const FrameHints&) override {
        if (kind == Encoder::broken) throw RecordingError(label + " failed");
        if (kind == Encoder::slow) {
            // The whole machine's time for a frame: twice what is allowed.
            const double end = processTime() + std::max(std::thread::hardware_concurrency(), 1U) / frameRate;
            while (processTime() < end) {
            }
        }
        if (kind != Encoder::holdsBack) sink({{}, pts, pts, 0, true});
    }
    void repeat(const PlanarView&, std::int64_t) override {}
    void finish(std::int64_t) override {}

private:
    std::string label;
    Encoder kind;
    double frameRate;
    PacketSink sink;
    StreamDescription stream;
};

/// A machine on which encoders behave as said.
class Machine final : public RealMedia {
public:
    Encoder hardware = Encoder::missing, hevc = Encoder::missing, superfast = Encoder::fast;

    std::unique_ptr<VideoEncoder> makeVideoEncoder(const VideoSettings& settings,
                                                   PacketSink sink) const override {
        const bool usual = settings.preset == "superfast";
        const Encoder kind = settings.hardware               ? hardware
                             : settings.codec == Codec::hevc ? hevc
                             : usual                         ? superfast
                                                             : Encoder::fast;
        if (kind == Encoder::missing) throw RecordingError("no such encoder");
        const std::string name = settings.hardware               ? "hardware"
                                 : settings.codec == Codec::hevc ? "hevc"
                                                                 : "h264";
        return std::make_unique<SimulatedEncoder>(settings.hardware ? name : name + " " + settings.preset,
                                                  kind, settings.frameRate, std::move(sink));
    }
};

} // namespace

TEST(EncoderChoice, FallsBackFromWhatIsMissingBrokenOrTooSlow) {
    struct Case {
        Encoder hardware, hevc, superfast;
        const char* chosen;
        const char* said; ///< in the log
    };
    const Case cases[] = {
        {Encoder::fast, Encoder::fast, Encoder::fast, "hardware", "(hardware)"},
        {Encoder::missing, Encoder::fast, Encoder::fast, "hevc ultrafast", "hevc"},
        {Encoder::broken, Encoder::fast, Encoder::fast, "hevc ultrafast", "hardware failed"},
        {Encoder::holdsBack, Encoder::fast, Encoder::fast, "hevc ultrafast", "hardware holds pictures back"},
        {Encoder::missing, Encoder::missing, Encoder::fast, "h264 superfast", "no such encoder"},
        {Encoder::missing, Encoder::slow, Encoder::fast, "h264 superfast", "hevc would take"},
        {Encoder::missing, Encoder::fast, Encoder::slow, "h264 ultrafast", "h264 superfast would take"},
    };
    int width = 64; // what was tried is remembered for a size
    for (const Case& each : cases) {
        SCOPED_TRACE(each.said);
        Machine machine;
        machine.hardware = each.hardware;
        machine.hevc = each.hevc;
        machine.superfast = each.superfast;
        std::string log;
        const auto encoder = chooseEncoder(
            machine, width += 16, 64, 240, [](const Packet&) {},
            [&log](const std::string& line) { log += line + "\n"; });
        EXPECT_EQ(encoder->name(), each.chosen);
        EXPECT_THAT(log, testing::HasSubstr(each.said));
    }
}

// With a real encoder: without hardware and without HEVC the recording gets packets all the same.
TEST(EncoderChoice, GivesARealEncoderWhereThereIsNoHardware) {
    class NoHardware final : public RealMedia {
        std::unique_ptr<VideoEncoder> makeVideoEncoder(const VideoSettings& settings,
                                                       PacketSink sink) const override {
            if (settings.hardware || settings.codec == Codec::hevc) throw RecordingError("no such encoder");
            return RealMedia::makeVideoEncoder(settings, std::move(sink));
        }
    };
    int packets = 0;
    const auto encoder = chooseEncoder(
        NoHardware(), 128, 96, 30, [&packets](const Packet&) { ++packets; }, [](const std::string&) {});
    const std::vector<std::uint8_t> plane(128 * 96, 128);
    encoder->encode({{plane.data(), plane.data(), plane.data()}, {128, 64, 64}, 128, 96}, 0);
    EXPECT_EQ(packets, 1);
    EXPECT_THAT(encoder->name(), testing::HasSubstr("264"));
}
