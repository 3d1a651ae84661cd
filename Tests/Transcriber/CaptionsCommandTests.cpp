#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/Project.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Transcriber/Narration.h"
#include "Tests/Transcriber/TestMedia.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <sys/wait.h>

using namespace RecordCore;

namespace {

namespace fs = std::filesystem;

/// Runs the program's verb `captions` on a recording in which one sentence is said.
class CaptionsCommand : public testing::Test {
protected:
    CaptionsCommand() {
        fs::create_directory(recording);
        fs::create_directory(temporary);
    }

    void record(bool speech) {
        Narration narration;
        narration.pause(2);
        if (speech)
            narration.say("You can see the result on the right side of the window.", Voice::Speaker::rms);
        narration.pause(1);
        makeRecording(recording / "recording.mp4", narration.seconds(), narration.sound);
    }

    int run(const std::string& arguments) {
        const std::string line = "TMPDIR='" + temporary.string() +
                                 "' OMBREL_WHISPER_MODEL= timeout 60 '" OMBREL_PROGRAM "' captions '" +
                                 recording.string() + "' " + arguments + " >'" + (folder / "out").string() +
                                 "' 2>'" + (folder / "err").string() + "'";
        const int status = std::system(line.c_str());
        out = readFile(folder / "out");
        errors = readFile(folder / "err");
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    fs::path project() const { return recording / "project.json"; }

    TemporaryFolder folder;
    fs::path recording = folder / "recording";
    fs::path temporary = folder / "tmp";
    std::string out;
    std::string errors;
};

} // namespace

TEST_F(CaptionsCommand, putsTheWordsIntoTheProjectAndWritesFiles) {
    record(true);
    Project before;
    before.trimStart = 1;
    before.format = "9:16";
    before.skipWaiting = false;
    before.followAction = false;
    before.save(project());
    ASSERT_EQ(run("--language en-US --srt '" + (folder / "a.srt").string() + "' --vtt '" +
                  (folder / "a.vtt").string() + "'"),
              0)
        << errors;
    EXPECT_EQ(errors, "");

    auto after = Project::load(project());
    ASSERT_TRUE(after);
    ASSERT_TRUE(after->captions);
    EXPECT_GE(after->captions->size(), 8U);
    EXPECT_TRUE(after->showCaptions);
    EXPECT_GT(after->captions->front().start, 2.0);
    EXPECT_LT(after->captions->front().start, 2.5);
    after->captions.reset();
    after->showCaptions = false;
    EXPECT_EQ(*after, before) << "something else was changed";

    // The film begins a second later than the recording.
    const std::string srt = readFile(folder / "a.srt");
    EXPECT_THAT(srt, testing::StartsWith("1\n00:00:01,"));
    EXPECT_THAT(srt, testing::HasSubstr("result"));
    EXPECT_THAT(readFile(folder / "a.vtt"), testing::StartsWith("WEBVTT\n\n00:00:01."));
    EXPECT_TRUE(fs::is_empty(temporary));
}

TEST_F(CaptionsCommand, saysWhyThereAreNone) {
    struct Case {
        const char* what;
        std::string arguments;
        std::string expected;
        int status = 1;
    };
    EXPECT_EQ(run(""), 1);
    EXPECT_THAT(errors, testing::HasSubstr("there is no recording here"));
    record(false);
    for (const Case& c : {
             Case{"nothing said", "--language en",
                  "ombrel-record: No speech found. Record with Mic on to get captions.\n"},
             Case{"unknown language", "--language tlh",
                  "ombrel-record: Speech recognition isn't available for this language on this computer. "
                  "(tlh is "
                  "wanted; available: en-US"},
             Case{"no folder", "--language en --srt /no/such/folder/a.srt",
                  "/no/such/folder: no such folder"},
             Case{"usage", "--colour red", "--colour", 2},
         }) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(run(c.arguments), c.status);
        EXPECT_THAT(errors, testing::HasSubstr(c.expected));
        EXPECT_FALSE(fs::exists(project()));
    }
}

TEST_F(CaptionsCommand, keepsAProjectThatCannotBeRead) {
    record(true);
    writeFileAtomically(project(), "{\"format\": ");
    ASSERT_EQ(run("--language en"), 0) << errors;
    EXPECT_EQ(readFile(recording / "project (unreadable).json"), "{\"format\": ");
    const auto after = Project::load(project());
    ASSERT_TRUE(after);
    EXPECT_TRUE(after->captions);
    EXPECT_THAT(errors, testing::HasSubstr("project (unreadable).json"));
}
