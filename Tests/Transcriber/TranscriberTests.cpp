#include "OmbrelRecord/Transcriber/Transcriber.h"
#include "RecordCore/Media/FFmpeg/FFmpegMedia.h"
#include "Tests/Support/Printing.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Transcriber/TemporaryPlace.h"
#include "Tests/Transcriber/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <regex>
#include <sys/stat.h>

using namespace OmbrelRecord;
using namespace RecordCore;

namespace {

/// What a recogniser was given in one request.
struct Heard {
    SpeechRequest request;
    double seconds = 0;
    mode_t access = 0;
    std::vector<std::filesystem::path> inTemporaryFolder;
};

/// Recognises nothing; counts, looks at the files, and answers what the test tells it to.
class CountingEngine : public SpeechEngine {
public:
    bool allowed = true;
    bool available = true;
    bool broken = false; ///< the model cannot be loaded
    bool onDevice = true;
    std::function<std::vector<SpeechSegment>(std::size_t request)> answer;
    mutable std::string asked;
    mutable std::vector<Heard> heard;

    std::string name() const override { return "counting"; }
    bool authorize() const override { return allowed; }
    std::vector<std::string> languages() const override { return {"en-US"}; }
    std::unique_ptr<SpeechRecognizer> recognizer(const std::string& language) const override;
};

class CountingRecognizer : public SpeechRecognizer {
public:
    explicit CountingRecognizer(const CountingEngine& engine) : engine(engine) {}
    bool supportsOnDevice() const override { return engine.onDevice; }
    std::vector<SpeechSegment> recognize(const SpeechRequest& request, const std::atomic<bool>*) override {
        Heard heard;
        heard.request = request;
        const auto tracks = FFmpeg::openSound(request.file);
        heard.seconds = static_cast<double>(tracks.at(0)->end()) / soundRate;
        struct stat facts {};
        if (::stat(request.file.c_str(), &facts) == 0) heard.access = facts.st_mode & 0777;
        for (const auto& entry : std::filesystem::directory_iterator(request.file.parent_path()))
            heard.inTemporaryFolder.push_back(entry.path());
        engine.heard.push_back(std::move(heard));
        return engine.answer ? engine.answer(engine.heard.size() - 1) : std::vector<SpeechSegment>{};
    }

private:
    const CountingEngine& engine;
};

std::unique_ptr<SpeechRecognizer> CountingEngine::recognizer(const std::string& language) const {
    asked = language;
    if (broken) throw RecordingError("the model is damaged");
    return available ? std::make_unique<CountingRecognizer>(*this) : nullptr;
}

class TranscriberTest : public testing::Test {
protected:
    std::filesystem::path recording(double seconds, bool sound = true) {
        const std::filesystem::path file = folder / "recording.mp4";
        makeRecording(file, seconds, sound ? std::optional(std::vector<float>{}) : std::nullopt);
        return file;
    }

    TemporaryFolder folder;
    TemporaryPlace temporary;
    TestMedia media;
    CountingEngine engine;
};

} // namespace

TEST(Transcriber, dividesARecording) {
    struct Case {
        double duration;
        std::vector<TimeRange> expected;
    };
    for (const Case& c : {
             Case{0, {}},
             Case{0.2, {}}, // nothing is worth recognising
             Case{0.25, {{0, 0.25}}},
             Case{50, {{0, 50}}},
             Case{50.125, {{0, 50}}},
             Case{50.25, {{0, 50}, {50, 50.25}}},
             Case{100.1, {{0, 50}, {50, 100}}},
             Case{120.1, {{0, 50}, {50, 100}, {100, 120.1}}},
             Case{-1, {}},
         })
        EXPECT_EQ(Transcriber::pieces(c.duration), c.expected) << c.duration;
    EXPECT_EQ(Transcriber::pieces(86400).size(), 1728U);
}

TEST_F(TranscriberTest, asksOncePerPieceAndTimesTheWords) {
    engine.answer = [](std::size_t request) -> std::vector<SpeechSegment> {
        switch (request) {
        case 0:
            return {{"Hello,", 1.5, 0.5}, {"", 2, 1}, {"I", 2.25, 0.02}};
        case 1:
            return {{"again.", 3, 0.08}};
        default:
            return {};
        }
    };
    std::vector<double> progress;
    Transcriber::Hooks hooks;
    hooks.progress = [&](double share) { progress.push_back(share); };
    const auto file = recording(120.1);
    const auto words = Transcriber(engine, media).words(file, "en-GB", hooks);

    EXPECT_EQ(engine.asked, "en-GB");
    EXPECT_EQ(words, (std::vector<CaptionWord>{
                         {"Hello,", 1.5, 2.0}, {"I", 2.25, 2.25 + 0.08}, {"again.", 53, 53 + 0.08}}));
    ASSERT_EQ(progress.size(), 3U);
    EXPECT_NEAR(progress[0], 50 / 120.1, 1e-4);
    EXPECT_NEAR(progress[1], 100 / 120.1, 1e-4);
    EXPECT_EQ(progress[2], 1);

    ASSERT_EQ(engine.heard.size(), 3U);
    const std::regex name("ombrel-record-voice-[0-9a-f]{8}(-[0-9a-f]{4}){3}-[0-9a-f]{12}\\.m4a");
    const double lengths[]{50, 50, 20.1};
    for (std::size_t i = 0; i < 3; ++i) {
        const Heard& heard = engine.heard[i];
        EXPECT_NEAR(heard.seconds, lengths[i], 0.03);
        EXPECT_TRUE(std::regex_match(heard.request.file.filename().string(), name)) << heard.request.file;
        EXPECT_EQ(heard.access, 0600U);
        EXPECT_THAT(heard.inTemporaryFolder, testing::ElementsAre(heard.request.file))
            << "the file of an earlier piece is still there";
        EXPECT_FALSE(heard.request.partialResults);
        EXPECT_TRUE(heard.request.punctuation);
        EXPECT_TRUE(heard.request.onDevice);
    }
    EXPECT_TRUE(temporary.empty());
}

TEST_F(TranscriberTest, staysOnTheDeviceOnlyWhereThatIsPossible) {
    engine.onDevice = false;
    Transcriber(engine, media).words(recording(1), "en", {});
    ASSERT_EQ(engine.heard.size(), 1U);
    EXPECT_FALSE(engine.heard[0].request.onDevice);
}

TEST_F(TranscriberTest, handsOverTheSoundOfThePiece) {
    // A tone of its own in each piece; the second is 440 Hz from 50 s on.
    std::vector<float> sound(static_cast<std::size_t>(52 * soundRate));
    for (std::size_t i = static_cast<std::size_t>(50.5 * soundRate); i < sound.size(); ++i)
        sound[i] = 0.5F;
    const std::filesystem::path file = folder / "recording.mp4";
    for (std::size_t i = static_cast<std::size_t>(50.5 * soundRate); i < sound.size(); ++i)
        sound[i] *= static_cast<float>(std::sin(static_cast<double>(i) * 0.0576));
    makeRecording(file, 52, sound);
    double onset = -1;
    engine.answer = [&](std::size_t request) -> std::vector<SpeechSegment> {
        if (request == 0) return {};
        const auto tracks = FFmpeg::openSound(engine.heard.back().request.file);
        std::vector<float> heard(static_cast<std::size_t>(2 * soundRate * soundChannels));
        tracks.at(0)->read(0, heard);
        const auto loud = std::find_if(heard.begin(), heard.end(), [](float v) { return v > 0.25F; });
        onset = static_cast<double>(loud - heard.begin()) / soundChannels / soundRate;
        return {};
    };
    Transcriber(engine, media).words(file, "en", {});
    EXPECT_NEAR(onset, 0.5, 0.002);
}

TEST_F(TranscriberTest, saysWhatIsWrong) {
    struct Case {
        const char* what;
        std::string expected;
        std::function<void()> prepare;
        bool sound = true;
        std::size_t requests = 0;
    };
    const std::string prepared = "Couldn't prepare the sound for captions.";
    const std::string unavailable = "Speech recognition isn't available for this language on this computer.";
    const std::string unreadable = "Couldn't read the recording's sound.";
    const auto fault = [&](TestMedia::Fault kind) { return [this, kind] { media.fault = kind; }; };
    const std::vector<Case> cases{
        {"not allowed",
         "Ombrel Record needs Speech Recognition. Allow it in your desktop's privacy settings.",
         [&] { engine.allowed = false; }},
        {"language unknown", unavailable, [&] { engine.available = false; }},
        {"model damaged", unavailable, [&] { engine.broken = true; }},
        {"recording unreadable", unreadable, fault(TestMedia::Fault::info)},
        {"recording gone", unreadable, [&] { std::filesystem::remove(folder / "recording.mp4"); }},
        {"no sound", "This recording has no sound. Turn on Mic before recording to get captions.", [] {},
         false},
        {"no encoder", prepared, fault(TestMedia::Fault::encoder)},
        {"no file", prepared, fault(TestMedia::Fault::writer)},
        {"disk full", prepared, fault(TestMedia::Fault::packet)},
        {"disk full at the end", prepared, fault(TestMedia::Fault::finish)},
        {"sound damaged", prepared, [&] { media.onRead = [] { throw RecordingError("damaged"); }; }},
        {"recogniser fails", "the recogniser broke",
         [&] {
             engine.answer = [](std::size_t request) -> std::vector<SpeechSegment> {
                 if (request == 1) throw RecordingError("the recogniser broke");
                 return {};
             };
         },
         true, 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        engine = {};
        media = {};
        const auto file = recording(51, c.sound);
        c.prepare();
        try {
            Transcriber(engine, media).words(file, "en-US", {});
            ADD_FAILURE() << "nothing was wrong";
        } catch (const RecordingError& error) {
            EXPECT_EQ(error.what(), c.expected);
        }
        EXPECT_EQ(engine.heard.size(), c.requests);
        EXPECT_TRUE(temporary.empty());
    }
}

TEST_F(TranscriberTest, isCancelledWhereverItStands) {
    const auto file = recording(120);
    std::atomic<bool> cancel = false;
    Transcriber::Hooks hooks;
    hooks.cancel = &cancel;
    struct Case {
        const char* what;
        std::function<void()> prepare;
        std::size_t requests;
    };
    int reads = 0;
    const std::vector<Case> cases{
        {"before", [&] { cancel = true; }, 0},
        {"while sound is copied", [&] { media.onRead = [&] { cancel = ++reads == 3; }; }, 0},
        {"while it is recognised",
         [&] {
             engine.answer = [&](std::size_t request) -> std::vector<SpeechSegment> {
                 cancel = request == 1;
                 return {{"word", 0, 1}};
             };
         },
         2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        engine = {};
        media = {};
        cancel = false;
        c.prepare();
        try {
            Transcriber(engine, media).words(file, "en-US", hooks);
            ADD_FAILURE() << "was not cancelled";
        } catch (const RecordingError& error) {
            EXPECT_STREQ(error.what(), "cancelled");
        }
        EXPECT_EQ(engine.heard.size(), c.requests);
        EXPECT_TRUE(temporary.empty());
    }
}

TEST_F(TranscriberTest, takesTheUsersLanguageWhenNoneIsGiven) {
    const char* variable = std::getenv("LC_ALL");
    const std::optional<std::string> old = variable ? std::optional<std::string>(variable) : std::nullopt;
    setenv("LC_ALL", "pt_BR.UTF-8", 1);
    Transcriber(engine, media).words(recording(0.1), std::nullopt, {});
    EXPECT_EQ(engine.asked, "pt-BR");
    EXPECT_TRUE(engine.heard.empty()) << "too short to hold a word";
    if (old)
        setenv("LC_ALL", old->c_str(), 1);
    else
        unsetenv("LC_ALL");
}
