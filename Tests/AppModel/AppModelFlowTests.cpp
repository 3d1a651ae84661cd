#include "Tests/AppModel/ScriptedApp.h"

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace ScriptedApp;
using Flow = AppModel::Flow;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr auto windowGone = "That window has closed. Pick another one, or a whole screen.";

/// One way through the flow: what happens, and what it leaves.
struct Way {
    const char* name;
    std::function<void(Stage&)> happens;
    Flow end;
    std::string problem;
    Trace log;
    Trace trace; ///< what the parts were told, in order
};

const Trace startLine{"record: start (window none, camera false, mic false, sound false)"};
Trace started(Trace more) {
    Trace lines = startLine;
    lines.push_back("record: countdown done, folder F");
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

const std::vector<Way>& ways() {
    static const std::vector<Way> table{
        {"no screen access, and no page of settings to open",
         [](Stage& stage) {
             stage.sources.access = stage.sources.grants = false;
             stage.model->startRecording();
         },
         Flow::home,
         "Ombrel Record can't see this screen. Log in to a desktop session, allow screen recording when it "
         "asks, and try again.",
         {"record: no screen access"},
         {"ask for the screen"}},
        {"no screen access, granted when asked: record has to be pressed again",
         [](Stage& stage) {
             stage.sources.access = false;
             stage.model->startRecording();
         },
         Flow::home,
         "",
         {"record: no screen access"},
         {"ask for the screen"}},
        {"no display",
         [](Stage& stage) {
             stage.sources.content.displays.clear();
             stage.model->startRecording();
         },
         Flow::home,
         "No display to record.",
         startLine,
         {}},
        {"a display that is gone: the first one is recorded",
         [](Stage& stage) {
             stage.model->chooseDisplay(1234);
             stage.record();
             ASSERT_EQ(stage.setup.source, RecordCore::ScreenSource(RecordCore::DisplaySource{7}));
         },
         Flow::recording,
         "",
         started({"record: capturing"}),
         {"hide", "start"}},
        {"the window has closed before",
         [](Stage& stage) {
             stage.model->chooseWindow(50);
             stage.sources.content.windows.clear();
             stage.model->startRecording();
         },
         Flow::home,
         windowGone,
         {"record: start (window 50, camera false, mic false, sound false)"},
         {}},
        {"the window closes while the countdown runs",
         [](Stage& stage) {
             stage.model->chooseWindow(50);
             stage.model->startRecording();
             stage.clock.advance(1);
             EXPECT_EQ(stage.model->recordedFrame(), QRect(1920, 0, 1280, 1024)); // the one that holds it
             stage.sources.content.windows.clear();
             stage.clock.advance(2);
             EXPECT_EQ(stage.model->windowID(), 0U);
         },
         Flow::home,
         windowGone,
         {"record: start (window 50, camera false, mic false, sound false)", "window: shown home"},
         {"activate 50", "hide", "show"}},
        {"the hot key while the countdown runs",
         [](Stage& stage) {
             stage.model->startRecording();
             stage.clock.advance(1);
             stage.hotKey.onPressed();
             stage.clock.advance(1.4);
             stage.run->startDone({});
         },
         Flow::recording,
         "",
         started({"record: capturing"}),
         {"hide", "start"}},
        {"the folder cannot be made",
         [](Stage& stage) {
             std::ofstream(stage.folder / "Videos") << "a file";
             stage.count();
             stage.model->dismissProblem(); // its words are the file system's
         },
         Flow::home,
         "",
         Trace{},
         {"hide", "show"}},
        {"a recorder cannot be made",
         [](Stage& stage) {
             stage.makeFailure = "no encoder";
             stage.count();
         },
         Flow::home,
         "Couldn't start recording: no encoder",
         started({"record: failed no encoder", "window: shown home"}),
         {"hide", "show"}},
        {"the recorders do not start; what was shown before comes back",
         [](Stage& stage) {
             stage.model->toggleCamera();
             stage.model->toggleMicrophone();
             stage.count();
             stage.run->startDone({"the disk is full", ""});
             EXPECT_FALSE(fs::exists(stage.runFolder));
         },
         Flow::home,
         "Couldn't start recording: the disk is full",
         {"record: start (window none, camera true, mic true, sound false)",
          "record: countdown done, folder F", "record: microphone Desk", "record: failed the disk is full",
          "window: shown home"},
         {"camera preview on", "meter on", "hide", "meter off", "camera preview off", "start",
          "camera preview on", "meter on", "show"}},
        {"the camera does not start",
         [](Stage& stage) {
             stage.model->toggleCamera();
             stage.count();
             stage.run->startDone(
                 {"", "The camera couldn't start, so this recording has no camera: camera busy"});
         },
         Flow::recording,
         "The camera couldn't start, so this recording has no camera: camera busy",
         {"record: start (window none, camera true, mic false, sound false)",
          "record: countdown done, folder F", "record: capturing"},
         {"camera preview on", "hide", "camera preview off", "start"}},
        {"a computer without a microphone records all the same",
         [](Stage& stage) {
             stage.model->toggleMicrophone();
             stage.sound.devices.clear();
             stage.record();
             EXPECT_FALSE(stage.setup.microphone);
         },
         Flow::recording,
         "",
         {"record: start (window none, camera false, mic true, sound false)",
          "record: countdown done, folder F", "record: microphone No microphone", "record: capturing"},
         {"meter on", "hide", "meter off", "start"}},
        {"stopped by the hot key",
         [](Stage& stage) {
             stage.record();
             stage.clock.advance(61.9);
             stage.hotKey.onPressed();
             EXPECT_EQ(stage.model->workingMessage(), QStringLiteral("Finishing the recording…"));
         },
         Flow::saving,
         "",
         started({"record: capturing", "record: stop after 61 s", "window: shown working"}),
         {"hide", "start", "show", "stop"}},
        {"the stream ends by itself: what there is, is kept",
         [](Stage& stage) {
             stage.record();
             stage.run->onEnd("the window was closed");
         },
         Flow::saving,
         "Recording stopped: the window was closed",
         started({"record: capturing", "record: stop after 0 s", "window: shown working"}),
         {"hide", "start", "show", "stop"}},
        {"the stream ends before its start was reported",
         [](Stage& stage) {
             stage.count();
             stage.run->onEnd("the disk is full");
             EXPECT_EQ(stage.model->flow(), Flow::preparing);
             stage.run->startDone({});
         },
         Flow::saving,
         "Recording stopped: the disk is full",
         started({"record: capturing", "record: stop after 0 s", "window: shown working"}),
         {"hide", "start", "show", "stop"}},
        {"no frame came: it cannot be saved",
         [](Stage& stage) {
             stage.record();
             stage.model->stopRecording();
             stage.run->stopDone({"no frames were captured", "", {}});
             EXPECT_FALSE(fs::exists(stage.runFolder));
         },
         Flow::home,
         "The recording couldn't be saved: no frames were captured",
         started({"record: capturing", "record: stop after 0 s", "window: shown working",
                  "record: save failed no frames were captured"}),
         {"hide", "start", "show", "stop"}},
        {"a second press while it is being saved",
         [](Stage& stage) {
             stage.record();
             stage.model->stopRecording();
             stage.model->stopRecording();
             stage.hotKey.onPressed();
             stage.model->discardRecording();
             EXPECT_THAT(stage.model->question(), IsEmpty());
         },
         Flow::saving,
         "",
         started({"record: capturing", "record: stop after 0 s", "window: shown working"}),
         {"hide", "start", "show", "stop"}},
        {"it cannot be opened",
         [](Stage& stage) {
             stage.record();
             stage.model->stopRecording();
             stage.run->stopDone({});
             stage.loadDone(nullptr, "no video in it");
         },
         Flow::home,
         "Couldn't open that video: no video in it",
         started({"record: capturing", "record: stop after 0 s", "window: shown working",
                  "record: saved, opening the editor", "editor: loading F", "editor: failed no video in it"}),
         {"hide", "start", "show", "stop"}},
        {"discarded",
         [](Stage& stage) {
             stage.model->toggleCamera();
             stage.record();
             stage.writeFiles();
             stage.clock.advance(75.2);
             stage.model->discardRecording();
             EXPECT_EQ(stage.model->question()[QStringLiteral("title")],
                       QStringLiteral("Discard this recording?"));
             EXPECT_EQ(
                 stage.model->question()[QStringLiteral("text")],
                 QStringLiteral(
                     "The 1:15 recorded so far will be deleted. Recording continues while you decide."));
             EXPECT_EQ(stage.model->question()[QStringLiteral("buttons")].toStringList(),
                       QStringList({QStringLiteral("Discard"), QStringLiteral("Keep Recording")}));
             stage.clock.advance(2);
             stage.model->answer(0);
             EXPECT_EQ(stage.model->screen(), AppModel::Screen::home);
             stage.model->startRecording(); // not before the recorders have ended
             stage.run->stopDone({});
             EXPECT_FALSE(fs::exists(stage.runFolder));
         },
         Flow::home,
         "",
         {"record: start (window none, camera true, mic false, sound false)",
          "record: countdown done, folder F", "record: capturing", "record: discarded after 77 s",
          "window: shown home"},
         {"camera preview on", "hide", "camera preview off", "start", "stop", "show", "camera preview on"}},
        {"discard, answered with Keep Recording",
         [](Stage& stage) {
             stage.record();
             stage.model->discardRecording();
             stage.model->answer(1);
             EXPECT_THAT(stage.model->question(), IsEmpty());
             stage.clock.advance(3);
             EXPECT_DOUBLE_EQ(stage.model->elapsed(), 3);
         },
         Flow::recording,
         "",
         started({"record: capturing"}),
         {"hide", "start"}},
        {"the recording ends by itself while discarding is being thought over",
         [](Stage& stage) {
             stage.record();
             stage.model->discardRecording();
             stage.run->onEnd("the disk is full");
             EXPECT_THAT(stage.model->question(), IsEmpty());
             stage.model->answer(0);
         },
         Flow::saving,
         "Recording stopped: the disk is full",
         started({"record: capturing", "record: stop after 0 s", "window: shown working"}),
         {"hide", "start", "show", "stop"}},
        {"the hot key in the editor: it is left first",
         [](Stage& stage) {
             stage.model->open(stage.folder / "a.mp4", {}, stage.folder.path());
             stage.loadDone(stage.editorOf(stage.folder.path()), "");
             ASSERT_NE(stage.model->editor(), nullptr);
             stage.lines.clear();
             stage.trace.clear();
             stage.hotKey.onPressed();
             EXPECT_EQ(stage.model->editor(), nullptr);
             stage.clock.advance(0);
         },
         Flow::counting,
         "",
         startLine,
         {"hide"}},
    };
    return table;
}

TEST(AppModel, EveryWayThroughTheFlowLeavesWhatItShould) {
    for (const Way& way : ways()) {
        SCOPED_TRACE(way.name);
        Stage stage;
        stage.open();
        way.happens(stage);
        stage.clock.advance(0);
        EXPECT_EQ(stage.model->flow(), way.end);
        EXPECT_EQ(stage.model->problem().toStdString(), way.problem);
        EXPECT_EQ(stage.model->isRecording(), way.end == Flow::recording);
        if (!way.log.empty()) {
            EXPECT_EQ(stage.lines, way.log);
        }
        EXPECT_EQ(stage.trace, way.trace);
    }
}

TEST(AppModel, ARecordingFromTheButtonToTheEditor) {
    Stage stage;
    AppModel& model = stage.open();
    Trace seen;
    const auto note = [&](const std::string& what) {
        seen.push_back(fmt::format("{:.2f} {}", stage.clock.now() - 100, what));
    };
    QObject::connect(&model, &AppModel::countdownChanged,
                     [&] { note(fmt::format("count {}", model.countdown())); });
    QObject::connect(&model, &AppModel::elapsedChanged,
                     [&] { note("elapsed " + model.elapsedText().toStdString()); });
    model.setSystemAudio(true);
    model.startRecording();
    stage.clock.advance(2.4);
    EXPECT_EQ(model.recordedFrame(), QRect(0, 0, 1920, 1080));
    ASSERT_TRUE(stage.run);
    EXPECT_TRUE(model.starting());
    EXPECT_TRUE(stage.setup.systemAudio);
    EXPECT_EQ(stage.setup.fps, 60);
    EXPECT_TRUE(fs::is_directory(stage.runFolder));
    stage.run->startDone({});
    EXPECT_FALSE(model.starting());
    stage.clock.advance(0.6);
    EXPECT_EQ(seen,
              (Trace{"0.00 count 3", "0.80 count 2", "1.60 count 1", "2.40 count 0", "2.40 elapsed 0:00",
                     "2.40 elapsed 0:00", "2.65 elapsed 0:00", "2.90 elapsed 0:00"}));
    stage.writeFiles();
    model.stopRecording();
    EXPECT_EQ(model.screen(), AppModel::Screen::working);
    RecordCore::InputLog log;
    log.cameraOffset = 0.25;
    stage.run->stopDone({"", "", log});
    EXPECT_EQ(model.recents()->count(), 1);
    EXPECT_EQ(stage.loadedVideo, stage.runFolder / "recording.mp4");
    EXPECT_EQ(stage.loadedFolder, stage.runFolder);
    EXPECT_EQ(stage.loadedLog, log);
    EXPECT_EQ(model.workingMessage(), QStringLiteral("Watching your recording…"));
    stage.loadProgress(0.999);
    EXPECT_EQ(model.workingMessage(), QStringLiteral("Watching your recording… 99%"));
    stage.loadDone(stage.editorOf(stage.runFolder), "");
    EXPECT_EQ(model.screen(), AppModel::Screen::editor);
    ASSERT_NE(model.editor(), nullptr);
    EXPECT_EQ(stage.lines.back(), "editor: open");
    model.backHome();
    EXPECT_EQ(model.screen(), AppModel::Screen::home);
    EXPECT_EQ(model.editor(), nullptr);
}

TEST(AppModel, WhatIsWaitedForCanBeGivenUp) {
    Stage stage;
    int givenUp = 0;
    stage.parts.cancelLoad = [&] { ++givenUp; };
    AppModel& model = stage.open();
    const fs::path place = stage.folder / "Films";
    fs::create_directory(place);
    const auto open = [&] { model.open(QString::fromStdString(place.string())); };

    EXPECT_FALSE(model.cancellable());
    model.cancelWorking(); // nothing to give up
    EXPECT_EQ(model.flow(), Flow::home);
    open();
    ASSERT_TRUE(model.cancellable());
    stage.loadProgress(0.4);
    model.cancelWorking();
    EXPECT_EQ(givenUp, 1);
    EXPECT_EQ(model.flow(), Flow::home);
    stage.loadProgress(0.5); // too late, all of it
    stage.loadDone(stage.editorOf(place), "");
    EXPECT_EQ(model.flow(), Flow::home);
    EXPECT_EQ(model.editor(), nullptr);
    const auto stale = stage.loadDone;
    open();
    stale(stage.editorOf(place), "");
    EXPECT_EQ(model.flow(), Flow::loading);
    stage.loadDone(stage.editorOf(place), "");
    EXPECT_EQ(model.flow(), Flow::editing);
    EXPECT_FALSE(model.cancellable());
    model.backHome();

    // What is being made whole becomes so, but is not opened.
    std::ofstream(place / "recording.journal") << "";
    stage.loadedVideo.clear();
    open();
    ASSERT_TRUE(model.cancellable());
    model.cancelWorking();
    stage.clock.advance(0);
    EXPECT_EQ(stage.recovered.size(), 1u);
    EXPECT_EQ(model.flow(), Flow::home);
    EXPECT_EQ(stage.loadedVideo, fs::path());

    // The end of a recording is waited for.
    stage.record();
    model.stopRecording();
    EXPECT_EQ(model.flow(), Flow::saving);
    EXPECT_FALSE(model.cancellable());
    model.cancelWorking();
    EXPECT_EQ(model.flow(), Flow::saving);
}

TEST(AppModel, TheWindowThatComesUpAtTheEndIsInNoFilm) {
    Stage stage;
    AppModel& model = stage.open();
    stage.record();
    model.stopRecording();
    EXPECT_EQ(stage.run->shownWhenHeld, 0);
    EXPECT_THAT(stage.trace, testing::Contains("show"));
}

TEST(AppModel, TheMicrophoneThatIsRecordedMovesTheMeter) {
    Stage stage;
    AppModel& model = stage.open();
    model.toggleMicrophone();
    stage.record();
    stage.run->level = 0.6;
    stage.clock.advance(0.1);
    EXPECT_EQ(model.microphoneLevel(), 0.6);
    stage.run->level = 0.2;
    stage.clock.advance(0.1);
    EXPECT_EQ(model.microphoneLevel(), 0.2);
    model.stopRecording();
    stage.run->stopDone({});
    EXPECT_EQ(model.microphoneLevel(), 0) << "the home screen's meter, which has heard nothing";
}

} // namespace
