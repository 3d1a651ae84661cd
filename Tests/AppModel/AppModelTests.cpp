#include "RecordCore/Model/AtomicFile.h"
#include "Tests/AppModel/ScriptedApp.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace ScriptedApp;
using Flow = AppModel::Flow;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(AppModel, WindowsAreListedAsTheUserKnowsThem) {
    Stage stage;
    AppModel& model = stage.open();
    int published = 0;
    QObject::connect(&model, &AppModel::sourcesChanged, [&] { ++published; });
    const auto show = [&](std::vector<WindowInfo> windows) {
        published = 0;
        model.updateWindows(windows);
        return published;
    };
    auto moved = Stage::window(50, "Editor", "notes.txt", {5, 5, 640, 480});
    EXPECT_EQ(show({moved}), 0); // neither an id nor a title has changed
    moved.title = "other.txt";
    EXPECT_EQ(show({moved}), 1);
    EXPECT_EQ(show({Stage::window(3, "Zoo", "b"), moved, Stage::window(4, "Zoo", "a")}), 1);
    std::vector<quint32> ids;
    for (const WindowInfo& window : model.windows())
        ids.push_back(window.id);
    EXPECT_THAT(ids, ElementsAre(50, 4, 3));

    EXPECT_EQ(model.targetName(), QStringLiteral("Left"));
    model.chooseDisplay(9);
    EXPECT_EQ(model.targetName(), QStringLiteral("Display 9"));
    model.chooseWindow(50);
    EXPECT_EQ(model.targetName(), QStringLiteral("Editor · notes.txt"));
    EXPECT_EQ(model.screen({1900, 500, 100, 100})->id, 9U); // its centre counts
    model.chooseDisplay(7);
    EXPECT_EQ(model.windowID(), 0U);
    stage.sources.content.displays.clear();
    model.refreshDisplays();
    stage.clock.advance(0);
    EXPECT_EQ(model.targetName(), QStringLiteral("Choose a screen"));
}

TEST(AppModel, ThePreviewFollowsTheSourceWhileTheHomeScreenShows) {
    Stage stage;
    AppModel& model = stage.open();
    EXPECT_EQ(model.livePreviewRevision(), 1);
    stage.clock.advance(1.2);
    stage.clock.advance(1.2);
    EXPECT_EQ(model.livePreviewRevision(), 3);
    model.chooseWindow(50); // shown at once, and the rhythm starts anew
    stage.clock.advance(1.1);
    EXPECT_EQ(model.livePreviewRevision(), 4);
    EXPECT_EQ(stage.sources.stills.back(), RecordCore::ScreenSource(RecordCore::WindowSource{50}));
    stage.record();
    const std::size_t stills = stage.sources.stills.size();
    stage.clock.advance(10);
    EXPECT_EQ(stage.sources.stills.size(), stills);
    model.discardRecording();
    model.answer(0);
    stage.run->stopDone({});
    stage.clock.advance(1.2);
    EXPECT_EQ(stage.sources.stills.size(), stills + 1);
    model.stopLivePreview();
    stage.clock.advance(10);
    EXPECT_EQ(stage.sources.stills.size(), stills + 1);
}

TEST(AppModel, PermissionsAreAskedForAndToldWhenDenied) {
    Stage stage;
    stage.sources.keys = false;
    AppModel& model = stage.open();
    stage.permissions.microphone = stage.permissions.camera = false;
    model.toggleMicrophone();
    EXPECT_EQ(model.problem(),
              QStringLiteral("Ombrel Record can't use the microphone. Turn it on in Settings → "
                             "Privacy → Microphone."));
    model.toggleCamera();
    EXPECT_EQ(
        model.problem(),
        QStringLiteral("Ombrel Record can't use the camera. Turn it on in Settings → Privacy → Camera."));
    EXPECT_FALSE(model.microphone() || model.camera());
    EXPECT_THAT(stage.trace, IsEmpty());
    stage.permissions.microphone = stage.permissions.camera = true;
    model.toggleMicrophone();
    model.toggleCamera();
    model.toggleMicrophone();
    model.toggleCamera();
    EXPECT_THAT(stage.trace, ElementsAre("meter on", "camera preview on", "meter off", "camera preview off"));

    stage.sources.keyPolls = 0;
    model.requestKeys();
    stage.clock.advance(1000);
    EXPECT_EQ(stage.sources.keyPolls, 61); // at once, and sixty times more
    EXPECT_FALSE(model.seesKeys());
    model.requestKeys();
    stage.clock.advance(3);
    stage.sources.keys = true;
    stage.clock.advance(1);
    EXPECT_TRUE(model.seesKeys());
}

TEST(AppModel, MoviesRecordingsAndTheSampleAreOpened) {
    Stage stage;
    AppModel& model = stage.open();
    const auto back = [&] {
        stage.loadDone(nullptr, "x");
        model.dismissProblem();
    };
    const fs::path place = stage.folder / "Films";
    fs::create_directory(place);
    model.openVideo(QString::fromStdString((place / "talk.mov").string()));
    EXPECT_EQ(stage.loadedVideo, place / "talk.mov");
    EXPECT_EQ(stage.loadedFolder, place);
    EXPECT_EQ(stage.loadedLog, std::nullopt);
    back();
    RecordCore::InputLog log;
    log.keysTracked = true;
    log.save(place / "input.json");
    model.openVideo(QString::fromStdString((place / "talk.mov").string()));
    EXPECT_EQ(stage.loadedLog, log);
    back();
    std::ofstream(place / "input.json") << "not a log";
    model.openVideo(QString::fromStdString((place / "talk.mov").string()));
    EXPECT_EQ(stage.loadedLog, std::nullopt);
    back();

    EXPECT_FALSE(model.hasSample());
    model.openSample();
    EXPECT_EQ(model.problem(), QStringLiteral("The sample isn't in this build."));

    // A recording that was cut off is made whole before it is opened.
    std::ofstream(place / "recording.journal") << "";
    model.open(QString::fromStdString(place.string()));
    EXPECT_EQ(model.flow(), Flow::recovering);
    EXPECT_EQ(model.screen(), AppModel::Screen::working);
    stage.clock.advance(0);
    EXPECT_EQ(model.flow(), Flow::loading);
    EXPECT_EQ(stage.loadedVideo, place / "recording.mp4");
    back();
    stage.recoverFailure = "still being recorded";
    model.open(QString::fromStdString(place.string()));
    stage.clock.advance(0);
    EXPECT_EQ(model.problem(), QStringLiteral("Couldn't open that video: still being recorded"));
    EXPECT_EQ(model.flow(), Flow::home);
}

TEST(AppModel, SlowDisksAreWaitedForElsewhere) {
    Stage stage;
    std::vector<std::pair<std::function<void()>, std::function<void()>>> waiting;
    stage.parts.aside = [&](std::function<void()> work, std::function<void()> done) {
        waiting.emplace_back(std::move(work), std::move(done));
    };
    const auto catchUp = [&] {
        while (!waiting.empty()) {
            const auto [work, done] = std::move(waiting.front());
            waiting.erase(waiting.begin());
            work();
            done();
        }
    };
    const fs::path place = stage.parts.library.root() / "A";
    fs::create_directories(place);
    std::ofstream(place / "recording.mp4") << "film";
    RecordCore::InputLog log;
    log.keysTracked = true;
    log.save(place / "input.json");
    AppModel& model = stage.open();
    EXPECT_EQ(model.recents()->count(), 0);
    catchUp();
    EXPECT_EQ(model.recents()->count(), 1);

    model.open(QString::fromStdString(place.string()));
    EXPECT_EQ(model.flow(), Flow::loading) << "the user sees at once that it works";
    EXPECT_EQ(stage.loadedVideo, fs::path());
    model.cancelWorking();
    model.open(QString::fromStdString(place.string()));
    catchUp();
    EXPECT_EQ(stage.loadedLog, log);
    stage.loadDone(nullptr, "x");

    stage.record();
    stage.writeFiles();
    model.discardRecording();
    model.answer(0);
    stage.run->stopDone({});
    EXPECT_TRUE(fs::exists(stage.runFolder));
    catchUp();
    EXPECT_FALSE(fs::exists(stage.runFolder));
    EXPECT_EQ(model.flow(), Flow::home);
}

TEST(AppModel, TheSampleIsOnlyPutIntoAFolderThatThereIs) {
    Stage stage;
    stage.parts.sample = stage.folder / "brought along";
    fs::create_directory(stage.parts.sample);
    std::ofstream(stage.parts.sample / "recording.mp4") << "film";
    AppModel& model = stage.open();
    const fs::path before = fs::current_path();
    fs::current_path(stage.folder.path());
    model.openSample();
    EXPECT_EQ(model.flow(), Flow::home);
    EXPECT_THAT(model.problem().toStdString(), testing::StartsWith("Couldn't open that video: "));
    EXPECT_FALSE(fs::exists("Sample · 4 agents fix a bug"));
    fs::current_path(before);
    stage.parts.sampleHome = stage.folder / "data";
    stage.open().openSample();
    EXPECT_EQ(RecordCore::readFile(stage.loadedVideo), "film");
    EXPECT_EQ(stage.loadedFolder.parent_path(), stage.folder / "data");
}

TEST(AppModel, RecordingsThatWereCutOffAreMadeWholeAndOffered) {
    Stage stage;
    for (const char* name : {"A", "B"}) {
        const fs::path place = stage.parts.library.root() / name;
        fs::create_directories(place);
        std::ofstream(place / "recording.mp4") << "";
        std::ofstream(place / "recording.journal") << "";
    }
    AppModel& model = stage.open();
    EXPECT_EQ(stage.recovered.size(), 2U);
    ASSERT_EQ(model.recoveredList().size(), 2);
    EXPECT_EQ(model.recents()->count(), 2);
    model.dismissRecovered();
    EXPECT_THAT(model.recoveredList(), IsEmpty());
    Stage running;
    running.recoverFailure = "still being recorded";
    fs::create_directories(running.parts.library.root() / "C");
    std::ofstream(running.parts.library.root() / "C" / "recording.mp4") << "";
    std::ofstream(running.parts.library.root() / "C" / "recording.journal") << "";
    EXPECT_THAT(running.open().recoveredList(), IsEmpty());
    EXPECT_EQ(running.model->problem(), QString());
}

TEST(AppModel, ARecordingIsThrownAwayAfterItsEditorWasLeft) {
    Stage stage;
    const fs::path place = stage.parts.library.root() / "A";
    fs::create_directories(place);
    std::ofstream(place / "recording.mp4") << "";
    AppModel& model = stage.open();
    model.open(QString::fromStdString(place.string()));
    stage.loadDone(stage.editorOf(place), "");
    stage.desktop.full = true;
    model.trash(QString::fromStdString(place.string()));
    EXPECT_EQ(model.screen(), AppModel::Screen::home);
    EXPECT_EQ(model.problem(), QStringLiteral("the trash is full"));
    EXPECT_EQ(model.recents()->count(), 1);
    stage.desktop.full = false;
    model.trash(QString::fromStdString(place.string()));
    EXPECT_FALSE(fs::exists(place));
    EXPECT_EQ(model.recents()->count(), 0);
}

TEST(AppModel, AHotKeyThatIsTakenIsTold) {
    Stage stage;
    stage.hotKey.trouble = "taken";
    AppModel& model = stage.open();
    EXPECT_EQ(model.hotKeyProblem(), QStringLiteral("taken"));
    EXPECT_EQ(model.problem(), QStringLiteral("taken"));
}

TEST(AppModel, ChoicesAreRemembered) {
    Stage stage;
    QSettings settings(QString::fromStdString((stage.folder / "settings.ini").string()),
                       QSettings::IniFormat);
    stage.parts.settings = &settings;
    AppModel& first = stage.open();
    first.setSystemAudio(true);
    first.toggleMicrophone();
    first.toggleCamera();
    first.chooseMicrophone(QStringLiteral("head"));
    EXPECT_EQ(first.activeMicrophone(), QStringLiteral("Headset"));
    AppModel& second = stage.open();
    EXPECT_TRUE(second.systemAudio());
    EXPECT_TRUE(second.microphone());
    EXPECT_TRUE(second.camera());
    EXPECT_EQ(second.activeMicrophone(), QStringLiteral("Headset"));
}

} // namespace
