#include "RecordCore/Capture/Microphones.h"
#include "RecordCore/Model/RecordingError.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <numbers>

using namespace RecordCore;

namespace {

std::optional<double> loudnessOf(const std::vector<float>& samples) {
    return Microphones::loudness({SampleBuffer::Format::float32, samples.data(), samples.size()});
}
std::optional<double> loudnessOf(const std::vector<std::int16_t>& samples) {
    return Microphones::loudness({SampleBuffer::Format::int16, samples.data(), samples.size()});
}

std::vector<float> sine(double peak) {
    std::vector<float> samples;
    for (int i = 0; i < 4800; ++i) // 100 whole periods
        samples.push_back(static_cast<float>(peak * std::sin(2 * std::numbers::pi * i / 48)));
    return samples;
}

/// A sound service as a script: what there is, and a stream that is fed by hand.
class ScriptedSound : public SoundBackend {
public:
    class Stream : public SoundStream {
    public:
        explicit Stream(const ScriptedSound& owner) : sound(owner) {}
        void start(Handlers receivers) override {
            if (sound.refuse) throw RecordingError("busy");
            sound.feed = std::move(receivers.onSound);
        }
        void stop() override { sound.feed = nullptr; }

    private:
        const ScriptedSound& sound;
    };

    std::vector<SoundDevice> microphones() const override {
        if (down) throw RecordingError("no sound service");
        return list;
    }
    std::string defaultMicrophone() const override { return standard; }
    std::unique_ptr<SoundStream> openSystemSound() const override { return nullptr; }
    std::unique_ptr<SoundStream> openMicrophone(const std::string& id) const override {
        opened = id;
        return std::make_unique<Stream>(*this);
    }

    std::vector<SoundDevice> list{{"desk", "Desk"}, {"head", "Headset"}};
    std::string standard = "desk";
    bool down = false;
    bool refuse = false;
    mutable std::string opened;
    mutable std::function<void(const SoundBlock&)> feed;
};

struct MicrophonesTest : testing::Test {
    ScriptedSound sound;
    std::vector<std::function<void()>> posted;
    Microphones microphones{sound, [this](std::function<void()> call) { posted.push_back(std::move(call)); }};

    void runPosted() {
        for (auto& call : std::exchange(posted, {}))
            call();
    }
    void play(double peak) {
        const std::vector<float> samples = sine(peak);
        sound.feed({samples, 0, false});
    }
};

} // namespace

TEST(Loudness, SpansFiftyDecibels) {
    struct Case {
        const char* name;
        std::optional<double> level;
        double expected;
    };
    const std::vector<float> quarter{0.5F, -0.5F, 0, 0}; // rms √(1/8)
    const float none = std::numeric_limits<float>::quiet_NaN();
    for (const Case& c : {
             Case{"silence", loudnessOf(std::vector<float>(960, 0)), 0},
             Case{"full scale", loudnessOf(std::vector<float>{1, -1, 1, -1}), 1},
             Case{"beyond full scale", loudnessOf(std::vector<float>{2, -2}), 1},
             Case{"sine of 0.1", loudnessOf(sine(0.1)), (20 * std::log10(0.1 / std::sqrt(2.0)) + 50) / 50},
             Case{"−50 dB", loudnessOf(std::vector<float>(8, static_cast<float>(std::pow(10, -2.5)))), 0},
             Case{"all samples count", loudnessOf(quarter), (20 * std::log10(std::sqrt(0.125)) + 50) / 50},
             Case{"integers", loudnessOf(std::vector<std::int16_t>{-32768, -32768}), 1},
             Case{"half in integers", loudnessOf(std::vector<std::int16_t>{16384, -16384}),
                  (20 * std::log10(0.5) + 50) / 50},
             Case{"no numbers", loudnessOf(std::vector<float>{none, none}), 0},
         }) {
        SCOPED_TRACE(c.name);
        ASSERT_TRUE(c.level);
        EXPECT_NEAR(*c.level, c.expected, 1e-6);
    }
    EXPECT_NEAR(*loudnessOf(sine(0.1)), 0.54, 0.005);
}

TEST(Loudness, RefusesWhatItCannotRead) {
    const std::array<float, 2> samples{1, 1};
    EXPECT_FALSE(Microphones::loudness({SampleBuffer::Format::other, samples.data(), 2}));
    EXPECT_FALSE(Microphones::loudness({SampleBuffer::Format::float32, samples.data(), 0}));
    EXPECT_FALSE(Microphones::loudness({SampleBuffer::Format::int16, nullptr, 2}));
}

TEST_F(MicrophonesTest, FallsBackToTheDefaultWhenTheChoiceIsGone) {
    microphones.refresh();
    EXPECT_EQ(microphones.devices(), sound.list);
    EXPECT_EQ(microphones.active(), (SoundDevice{"desk", "Desk"}));
    microphones.select("head");
    microphones.refresh();
    EXPECT_EQ(microphones.selectedID(), "head");
    EXPECT_EQ(microphones.active(), (SoundDevice{"head", "Headset"}));

    sound.list.pop_back(); // unplugged: at once for recording, in the list with the next refresh
    EXPECT_EQ(microphones.active(), (SoundDevice{"desk", "Desk"}));
    EXPECT_EQ(microphones.selectedID(), "head");
    microphones.refresh();
    EXPECT_FALSE(microphones.selectedID());

    sound.list.clear();
    sound.standard.clear();
    EXPECT_FALSE(microphones.active());
    sound.down = true;
    microphones.refresh();
    EXPECT_TRUE(microphones.devices().empty());
    EXPECT_FALSE(microphones.active());
}

TEST_F(MicrophonesTest, MetersTheActiveDeviceOnTheMainThread) {
    microphones.select("head");
    microphones.startMeter();
    EXPECT_TRUE(microphones.metering());
    EXPECT_EQ(sound.opened, "head");

    play(std::sqrt(2.0));              // rms 1
    EXPECT_EQ(microphones.level(), 0); // not before the main thread comes to it
    runPosted();
    EXPECT_NEAR(microphones.level(), 1, 1e-6);
    play(0);
    runPosted();
    EXPECT_NEAR(microphones.level(), 0.82, 1e-6);
    play(0);
    play(0.1 * std::sqrt(2.0)); // rms 0.1: 0.6
    runPosted();
    EXPECT_NEAR(microphones.level(), 0.18 * 0.6 + 0.82 * 0.82 * 0.82, 1e-6);

    play(1);
    microphones.stopMeter();
    runPosted(); // what was on its way comes too late
    EXPECT_EQ(microphones.level(), 0);
    EXPECT_FALSE(microphones.metering());
    EXPECT_FALSE(sound.feed);
}

TEST_F(MicrophonesTest, StaysOffWhenTheMeterCannotBeBuilt) {
    sound.refuse = true;
    microphones.startMeter();
    EXPECT_FALSE(microphones.metering());
    sound.refuse = false;
    sound.list.clear();
    microphones.startMeter();
    EXPECT_FALSE(microphones.metering());
}
