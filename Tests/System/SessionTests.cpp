// From the hot key to the exported film: the application's model over a real X server and sound service.

#include "OmbrelRecord/AppModel/Diag.h"
#include "OmbrelRecord/EditorModel/EditorModel.h"
#include "OmbrelRecord/Entry/AppSession.h"
#include "RecordCore/Capture/X11/X11HotKey.h"
#include "RecordCore/Model/ActivitySample.h"
#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/RecordingFiles.h"
#include "Tests/System/PulseDaemon.h"
#include "Tests/System/XSession.h"

#include <QtCore/QCoreApplication>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <thread>

using namespace OmbrelRecord;
using namespace RecordCore;
namespace fs = std::filesystem;
using Flow = AppModel::Flow;

namespace {

constexpr std::uint32_t superKey = 0xFFEB, altKey = 0xFFE9, capsLock = 0xFFE5, numLock = 0xFF7F;
const std::vector<std::uint32_t> hotKey{superKey, altKey, 'r'};

/// Lets the application work until a condition holds.
template <typename Condition>
bool until(double seconds, Condition holds) {
    return eventually(seconds, [&] {
        QCoreApplication::processEvents();
        return holds();
    });
}

class Session : public testing::Test {
protected:
    void SetUp() override {
        if (!XSession::installed()) GTEST_SKIP() << "Xvfb, openbox and xrandr are not all installed";
        // Before the log's place is looked up for the first time, and the same for all tests of this process.
        static const TemporaryFolder home;
        for (const auto& [name, value] :
             {std::pair("HOME", ""), std::pair("XDG_STATE_HOME", "state"),
              std::pair("XDG_CONFIG_HOME", "config"), std::pair("XDG_DATA_HOME", "data"),
              std::pair("XDG_CACHE_HOME", "cache")})
            ::setenv(name, (home / value).c_str(), 1);
        ::unsetenv("XDG_SESSION_TYPE");
        QSettings().clear();
        screen = std::make_unique<XSession>(640, 480);
    }

    AppModel& open() {
        session = std::make_unique<AppSession>();
        session->model().begin();
        EXPECT_TRUE(until(10, [this] { return session->model().displayID() != 0; }));
        return session->model();
    }

    /// Something to be recorded: the screen changes all the time.
    void keepBusy(TestWindow& window) {
        painter = std::jthread([&window](const std::stop_token& stop) {
            for (std::uint32_t i = 0; !stop.stop_requested(); ++i) {
                window.fill(i * 0x030507 & 0xFFFFFF, static_cast<int>(i % 20) * 10, 20, 60, 60);
                std::this_thread::sleep_for(std::chrono::milliseconds(20));
            }
        });
    }

    std::unique_ptr<XSession> screen;
    std::unique_ptr<AppSession> session;
    std::jthread painter;
};

TEST_F(Session, FromTheHotKeyToTheFilm) {
    std::optional<PulseDaemon> sound;
    if (PulseDaemon::installed()) {
        sound.emplace();
        sound->start();
    }
    TestWindow window(*screen, "Work", 50, 50, 400, 300, 0x303030);
    keepBusy(window);
    AppModel& model = open();
    EXPECT_EQ(model.hotKeyProblem(), QString());
    model.setSystemAudio(sound.has_value());
    EXPECT_TRUE(until(10, [&] { return model.livePreviewRevision() > 0; }));
    EXPECT_EQ(model.livePreview().size(), QSize(640, 480));

    std::vector<double> counted;
    QObject::connect(&model, &AppModel::countdownChanged, [&] { counted.push_back(monotonicSeconds()); });
    screen->typeKeys(hotKey);
    ASSERT_TRUE(until(10, [&] { return model.flow() == Flow::counting; }));
    screen->typeKeys(hotKey); // not heard now
    ASSERT_TRUE(until(20, [&] { return model.isRecording(); })) << model.problem().toStdString();
    ASSERT_EQ(counted.size(), 4U); // 3, 2, 1 and none
    for (std::size_t i = 1; i < counted.size(); ++i)
        EXPECT_GE(counted[i] - counted[i - 1], 0.79);
    EXPECT_TRUE(until(20, [&] { return model.elapsed() >= 1; }));
    screen->movePointer(120, 90);
    screen->click(1);
    EXPECT_TRUE(until(20, [&] { return model.elapsed() >= 2.5; }));
    screen->typeKeys(hotKey);
    ASSERT_TRUE(until(60, [&] { return model.screen() == AppModel::Screen::editor; }))
        << model.problem().toStdString();
    EXPECT_EQ(model.problem(), QString());

    ASSERT_EQ(model.recents()->count(), 1);
    const RecordingFiles files{model.recents()->recordings().front().folder};
    const InputLog log = InputLog::load(files.input());
    EXPECT_GT(log.cursor.size(), 60U);
    EXPECT_THAT(log.events,
                testing::Contains(testing::Field(&InputLog::Event::kind, InputLog::Event::Kind::click)));
    EXPECT_GT(loadActivity(files.activity()).size(), 10U);
    EXPECT_FALSE(fs::exists(files.journal()));
    const SourceInfo info = session->media().sourceInfo(files.video());
    EXPECT_EQ(info.width, 640);
    EXPECT_GE(info.duration, 2.4);
    EXPECT_EQ(info.hasAudio, sound.has_value());

    EditorModel& editor = *model.editor();
    EXPECT_TRUE(editor.set(QStringLiteral("showTitle"), true));
    EXPECT_TRUE(editor.set(QStringLiteral("title"), QStringLiteral("A film")));
    EXPECT_TRUE(until(10, [&] { return !editor.rendering(); }));
    editor.exportFilm(QStringLiteral("1:1"), 0.25);
    ASSERT_TRUE(until(100, [&] {
        return editor.exportState() == EditorModel::ExportState::done ||
               editor.exportState() == EditorModel::ExportState::failed;
    }));
    EXPECT_EQ(editor.exportFailure(), QString());
    const SourceInfo film = session->media().sourceInfo(editor.exportedFile());
    EXPECT_EQ(film.width, 270);
    EXPECT_EQ(film.height, 270);
    EXPECT_NEAR(film.duration, editor.outputDuration(), 0.1);

    model.backHome();
    EXPECT_TRUE(until(20, [&] { return Project::load(files.project())->showTitle; }));
    Diag::flush();
    const std::string lines =
        std::regex_replace(readFile(Diag::file()), std::regex("\\d{4}-\\d{2}-\\d{2}T[0-9:]+Z "), "");
    std::size_t at = 0;
    for (const std::string line :
         {"record: start (window none, camera false, mic false, sound ",
          "record: countdown done, folder Recording ", "record: capturing", "record: stop after 2 s",
          "window: shown working", "record: saved, opening the editor", "editor: loading Recording ",
          "window: shown editor", "editor: open", "export: "}) {
        const std::size_t found = lines.find(line, at);
        ASSERT_NE(found, std::string::npos) << line << "\nin\n" << lines;
        at = found;
    }
}

TEST_F(Session, TheProgramRecordsByTheHotKeyAndShowsTheEditor) {
    TestWindow window(*screen, "Work", 50, 50, 400, 300, 0x303030);
    keepBusy(window);
    // This process shows nothing; the program does.
    ChildProcess program({OMBREL_RECORD_PROGRAM}, {{{"QT_QPA_PLATFORM", "xcb"}}, {}});
    Diag::flush();
    const std::size_t before = fs::exists(Diag::file()) ? fs::file_size(Diag::file()) : 0;
    const auto logged = [&](const char* line) {
        return fs::exists(Diag::file()) && readFile(Diag::file()).find(line, before) != std::string::npos;
    };
    ASSERT_TRUE(eventually(60, [&] {
        screen->typeKeys(hotKey); // which nobody hears before it is grabbed, nor while the countdown runs
        return logged("record: start");
    }));
    ASSERT_TRUE(eventually(60, [&] { return logged("record: capturing"); }));
    const double began = monotonicSeconds();
    EXPECT_TRUE(eventually(20, [&] { return monotonicSeconds() > began + 1.5; }));
    screen->typeKeys(hotKey);
    EXPECT_TRUE(eventually(60, [&] { return logged("editor: open"); })) << readFile(Diag::file());
    program.terminate();
    const std::vector<Recording> recordings = Library().recordings();
    ASSERT_FALSE(recordings.empty());
    EXPECT_NO_THROW(static_cast<void>(InputLog::load(RecordingFiles{recordings.front().folder}.input())));
}

TEST_F(Session, AWindowIsRecordedAndDiscarded) {
    TestWindow window(*screen, "Work", 50, 50, 400, 300, 0x303030);
    keepBusy(window);
    AppModel& model = open();
    model.chooseWindow(window.id());
    model.startRecording();
    ASSERT_TRUE(until(30, [&] { return model.isRecording(); })) << model.problem().toStdString();
    const std::vector<Recording> during = Library().recordings();
    EXPECT_TRUE(until(20, [&] { return model.elapsed() >= 0.5; }));
    model.discardRecording();
    const double asked = model.elapsed();
    EXPECT_TRUE(until(20, [&] { return model.elapsed() > asked; })); // it goes on
    model.answer(0);
    ASSERT_TRUE(until(30, [&] { return model.flow() == Flow::home; }));
    EXPECT_EQ(Library().recordings().size() + 1, during.size());
}

TEST_F(Session, AWindowThatIsClosedEndsItsRecording) {
    auto window = std::make_unique<TestWindow>(*screen, "Work", 50, 50, 400, 300, 0x303030);
    AppModel& model = open();
    model.chooseWindow(window->id());
    model.startRecording();
    ASSERT_TRUE(until(30, [&] { return model.isRecording(); })) << model.problem().toStdString();
    EXPECT_TRUE(until(20, [&] { return model.elapsed() >= 0.5; }));
    window->close();
    ASSERT_TRUE(until(60, [&] { return model.screen() == AppModel::Screen::editor; }));
    EXPECT_THAT(model.problem().toStdString(), testing::StartsWith("Recording stopped: "));
    model.startRecording(); // the editor is left, and the window is missed
    ASSERT_TRUE(until(10, [&] { return model.flow() == Flow::home; }));
    EXPECT_EQ(model.problem(),
              QStringLiteral("That window has closed. Pick another one, or a whole screen."));
}

TEST_F(Session, TheHotKeyIsGrabbedWhateverTheLocksAndFromNobodyElse) {
    std::atomic<int> presses{0};
    {
        const X11HotKey key('r', [&] { ++presses; });
        EXPECT_THROW(X11HotKey('r', [] {}), RecordingError);
        int expected = 0;
        for (const std::vector<std::uint32_t>& lock :
             {std::vector<std::uint32_t>{}, {capsLock}, {numLock}, {capsLock}, {numLock}}) {
            if (!lock.empty()) screen->typeKeys(lock);
            pauseShortly(); // a press at the millisecond of the last release is a key that repeats
            screen->typeKeys(hotKey);
            ++expected;
            EXPECT_TRUE(eventually(10, [&] { return presses == expected; })) << expected;
        }
        screen->typeKeys({altKey, 'r'});
        screen->typeKeys({superKey, 'r'});
        screen->typeKeys({'r'});
        pauseShortly();
        screen->typeKeys(hotKey);
        EXPECT_TRUE(eventually(10, [&] { return presses == expected + 1; }));
    }
    const X11HotKey again('r', [] {}); // let go of
    AppModel& model = open();
    EXPECT_EQ(model.hotKeyProblem(),
              QStringLiteral("Super+Alt+R belongs to another program, so it doesn't start a "
                             "recording here. Use the Record button."));
}

} // namespace
