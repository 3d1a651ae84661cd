#include "OmbrelRecord/Transcriber/Whisper/ChildProcess.h"
#include "OmbrelRecord/Transcriber/Whisper/WhisperEngine.h"
#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Transcriber/TemporaryPlace.h"
#include "Tests/Transcriber/TestMedia.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <thread>

using namespace OmbrelRecord;
using namespace RecordCore;

namespace {

namespace fs = std::filesystem;

std::vector<std::string> texts(const std::vector<SpeechSegment>& segments) {
    std::vector<std::string> list;
    for (const SpeechSegment& segment : segments)
        list.push_back(segment.text);
    return list;
}

std::string transcription(const std::vector<std::tuple<std::string, int, int>>& segments) {
    std::string json = R"({"result":{"language":"en"},"transcription":[)";
    for (const auto& [text, from, to] : segments)
        json += fmt::format(
            R"({}{{"timestamps":{{"from":"x","to":"y"}},"offsets":{{"from":{},"to":{}}},"text":"{}"}})",
            json.ends_with('[') ? "" : ",", from, to, text);
    return json + "]}";
}

/// A program that behaves as whisper.cpp's on the outside, and a model that begins like one.
class WhisperTest : public testing::Test {
protected:
    /// `body`: shell, with $out the name of the result without its ending and $wave the sound.
    void program(const std::string& body) {
        std::ofstream file(settings.program);
        file << "#!/bin/sh\nprintf '%s\\n' \"$@\" > '" << (folder / "arguments").string() << "'\n"
             << "while [ $# -gt 0 ]; do case $1 in -of) out=$2 ;; -f) wave=$2 ;; esac; shift; done\n"
             << body << '\n';
        file.close();
        fs::permissions(settings.program, fs::perms::owner_all);
    }
    void model(std::uint32_t vocabulary, std::uint32_t mark = 0x67676d6c) {
        std::ofstream file(settings.model, std::ios::binary);
        for (const std::uint32_t number : {mark, vocabulary})
            for (int i = 0; i < 4; ++i)
                file.put(static_cast<char>(number >> (8 * i)));
    }
    std::unique_ptr<SpeechRecognizer> recognizer(const std::string& language) {
        return WhisperEngine(media, settings).recognizer(language);
    }

    TemporaryFolder folder;
    TemporaryPlace temporary;
    WhisperEngine::Settings settings{folder / "whisper cli", folder / "model.bin"};
    TestMedia media;
};

} // namespace

TEST_F(WhisperTest, hasLanguagesOnlyWithProgramAndModel) {
    EXPECT_TRUE(WhisperEngine(media, settings).languages().empty());
    program("");
    EXPECT_TRUE(WhisperEngine(media, settings).languages().empty());
    model(51864, 0x46554747); // another format
    EXPECT_TRUE(WhisperEngine(media, settings).languages().empty());
    model(51864);
    EXPECT_THAT(WhisperEngine(media, settings).languages(), testing::ElementsAre("en"));
    EXPECT_TRUE(recognizer("en-GB"));
    EXPECT_FALSE(recognizer("de"));
    model(51865);
    EXPECT_EQ(WhisperEngine(media, settings).languages().size(), 99U);
    EXPECT_TRUE(recognizer("de-AT"));
    EXPECT_FALSE(WhisperEngine(media, {settings.program, folder.path()}).recognizer("en"));
}

TEST_F(WhisperTest, asksTheProgramAndCleansUp) {
    program("cp \"$wave\" '" + (folder / "heard.wav").string() + "'\n" + "cat > \"$out.json\" <<'END'\n" +
            transcription({{" Hello", 500, 750}, {" world.", 750, 1250}}) + "\nEND");
    model(51865);
    const fs::path recording = folder / "recording.mp4";
    makeRecording(recording, 2, std::vector<float>(48000, 0.25F));
    const auto segments = recognizer("de-DE")->recognize({.file = recording}, nullptr);
    EXPECT_EQ(segments, (std::vector<SpeechSegment>{{"Hello", 0.5, 0.25}, {"world.", 0.75, 0.5}}));
    EXPECT_TRUE(temporary.empty());

    const std::string arguments = readFile(folder / "arguments");
    EXPECT_THAT(arguments, testing::HasSubstr("-l\nde\n"));
    EXPECT_THAT(arguments, testing::HasSubstr("-m\n" + settings.model.string() + "\n"));
    const std::string wave = readFile(folder / "heard.wav");
    ASSERT_EQ(wave.size(), 44U + 2 * 2 * 16000);
    EXPECT_EQ(wave.substr(0, 4), "RIFF");
    const auto sample = [&wave](std::size_t i) {
        return static_cast<std::int16_t>(static_cast<unsigned char>(wave[44 + 2 * i]) |
                                         static_cast<unsigned char>(wave[45 + 2 * i]) << 8);
    };
    EXPECT_NEAR(sample(8000), 8192, 200);
    EXPECT_NEAR(sample(24000), 0, 200);
}

TEST_F(WhisperTest, passesOnWhatWentWrong) {
    model(51865);
    const fs::path recording = folder / "recording.mp4";
    makeRecording(recording, 1, std::vector<float>{});
    struct Case {
        const char* body;
        const char* expected;
    };
    for (const Case& c :
         {Case{"echo 'starting' >&2; echo 'error: no memory' >&2; exit 3", "status 3: error: no memory"},
          Case{"exit 0", "status 0: no message"}, // and no result either
          Case{"kill -9 $$", "status 137"}, Case{"echo '[1, 2' > \"$out.json\"", "is not valid JSON"},
          Case{"echo '{}' > \"$out.json\"", "transcription"},
          Case{"head -c 300000 /dev/zero >&2; echo >&2; echo last >&2; exit 1", "status 1: last"}}) {
        SCOPED_TRACE(c.body);
        program(c.body);
        try {
            recognizer("en")->recognize({.file = recording}, nullptr);
            ADD_FAILURE() << "nothing went wrong";
        } catch (const RecordingError& error) {
            EXPECT_THAT(error.what(), testing::HasSubstr(c.expected));
        }
        EXPECT_TRUE(temporary.empty());
    }
    settings.program = folder / "recording.mp4"; // there, but no program
    EXPECT_THROW(recognizer("en")->recognize({.file = recording}, nullptr), RecordingError);
}

TEST_F(WhisperTest, isStoppedWithAllThatItStarted) {
    // The stand-in says that it runs, and starts a program of its own, as a wrapper script does.
    const fs::path started = folder / "started";
    program("sleep 600 &\necho $! > '" + started.string() + ".new'\nmv '" + started.string() + ".new' '" +
            started.string() + "'\nwait");
    model(51865);
    const fs::path recording = folder / "recording.mp4";
    makeRecording(recording, 1, std::vector<float>{});
    std::atomic<bool> cancel = false;
    std::thread user([&] {
        while (!fs::exists(started))
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        cancel = true;
    });
    EXPECT_TRUE(recognizer("en")->recognize({.file = recording}, &cancel).empty());
    user.join();
    // Its parent gone, the sleeper is somebody else's child; it is dead or dying.
    const pid_t sleeper = static_cast<pid_t>(std::stol(readFile(started)));
    bool alive = true;
    for (int i = 0; i < 500 && alive; ++i) {
        std::ifstream stat(fmt::format("/proc/{}/stat", sleeper));
        std::string number;
        std::string name;
        std::string state;
        alive = static_cast<bool>(stat >> number >> name >> state) && state != "Z";
        if (alive) std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_FALSE(alive);
    EXPECT_TRUE(temporary.empty());
}

TEST(Whisper, readsWords) {
    struct Case {
        const char* what;
        std::string json;
        std::vector<std::string> expected;
    };
    const std::vector<Case> cases{
        {"punctuation stays", transcription({{" So,", 0, 100}, {" yes!", 100, 200}}), {"So,", "yes!"}},
        {"silence", transcription({{" [BLANK_AUDIO]", 0, 100}, {"", 0, 0}, {" ", 0, 0}}), {}},
        {"sounds",
         transcription(
             {{" (soft", 0, 1}, {" music)", 1, 2}, {" [typing]", 2, 3}, {" ♪", 3, 4}, {" ok", 4, 5}}),
         {"ok"}},
        {"a bracket for good", transcription({{" (a", 0, 1}, {" b", 1, 2}}), {"(a", "b"}},
        {"half a character", transcription({{" Gr\xc3", 0, 1}, {" \xbc\xc3\xbc", 1, 2}}), {"Gr?", "?ü"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(texts(WhisperEngine::words(c.json, 10)), c.expected);
    }
    // Several words share the time by their length; times stay in order and inside the sound.
    EXPECT_EQ(
        WhisperEngine::words(
            transcription({{" to be here", 1000, 3000}, {" back", 500, 800}, {" end", 9000, 99000}}), 10),
        (std::vector<SpeechSegment>{
            {"to", 1, 0.5}, {"be", 1.5, 0.5}, {"here", 2, 1}, {"back", 1, 0}, {"end", 9, 1}}));
}

TEST(ChildProcess, isFoundInThePath) {
    EXPECT_EQ(ChildProcess::find("sh").filename(), "sh");
    EXPECT_TRUE(ChildProcess::find("no-such-program-here").empty());
    EXPECT_TRUE(ChildProcess::find("").empty());
}
