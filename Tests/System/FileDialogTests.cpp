// A movie is chosen as users choose it: in the desktop's own dialog where there is one, else in the
// program's.

#include "RecordCore/Model/AtomicFile.h"
#include "Tests/System/Program.h"

#include <fstream>
#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

class FileDialog : public testing::Test {
protected:
    void SetUp() override {
        for (const char* needed : {"Xvfb", "openbox", "xrandr", "xdotool", "ffmpeg"})
            if (!ChildProcess::installed(needed)) GTEST_SKIP() << needed << " is not installed";
        session = std::make_unique<XSession>(1600, 900);
        fs::create_directories(movie.parent_path());
        ASSERT_EQ(ChildProcess::run({"ffmpeg", "-v", "error", "-f", "lavfi", "-i",
                                     "testsrc2=size=640x360:rate=30:duration=2", "-pix_fmt", "yuv420p",
                                     movie.string()},
                                    {{}, own / "ffmpeg.log"}),
                  0)
            << RecordCore::readFile(own / "ffmpeg.log");
    }

    void start(const std::string& bus) {
        program.emplace(*session,
                        std::map<std::string, std::string>{{"HOME", home.string()},
                                                           {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + bus}});
        ASSERT_TRUE(program->named(QStringLiteral("Record"), QStringLiteral("Button")))
            << program->complaint() << program->said();
        program->key({Keys::control, 'o'});
    }
    int handle(std::vector<std::string> command) {
        command.insert(command.begin(), "xdotool");
        return ChildProcess::run(std::move(command), {{}, own / "xdotool.log"});
    }
    void expectOpened(const QString& name = QStringLiteral("käse")) {
        EXPECT_TRUE(program->waitForLog("editor: open")) << program->log() << program->said();
        EXPECT_TRUE(program->windowShown(name + QStringLiteral(" — Ombrel Record"))) << program->complaint();
    }

    TemporaryFolder own;
    const fs::path home = own / "home";
    const fs::path movie = home / "Videos/käse.mp4";
    std::unique_ptr<XSession> session;
    std::optional<Program> program;
};

TEST_F(FileDialog, IsTheDesktopsOwn) {
    if (!fs::exists("/usr/libexec/xdg-desktop-portal-gtk") || !ChildProcess::installed("dbus-daemon"))
        GTEST_SKIP() << "xdg-desktop-portal-gtk and dbus-daemon are not both installed";
    // What the bus starts lives in its environment.
    const std::string socket = (own / "bus").string();
    ChildProcess bus({"dbus-daemon", "--session", "--nofork", "--nopidfile", "--nosyslog",
                      "--address=unix:path=" + socket},
                     {{{"HOME", home.string()},
                       {"XDG_RUNTIME_DIR", own.path().string()},
                       {"XDG_CURRENT_DESKTOP", "GNOME"},
                       {"GDK_BACKEND", "x11"},
                       {"LC_ALL", "C.UTF-8"},
                       {"DBUS_SESSION_BUS_ADDRESS", "unix:path=" + socket}},
                      own / "bus.log"});
    ASSERT_TRUE(eventually(20, [&] { return fs::exists(socket); })) << RecordCore::readFile(own / "bus.log");
    ASSERT_NO_FATAL_FAILURE(start(socket));

    ASSERT_TRUE(eventually(60, [&] {
        return handle({"search", "--onlyvisible", "--name", "^Open a movie$", "windowfocus"}) == 0;
    })) << RecordCore::readFile(own / "bus.log");
    // A path is typed as it begins: the dialog then shows its field for it. Only what every keyboard has. A
    // dialog that has only just come up may miss the first letters; then it is typed again in their place.
    const fs::path plain = home / "plain.mp4";
    fs::copy_file(movie, plain);
    const std::vector<std::string> search{"search", "--onlyvisible", "--name", "^Open a movie$"};
    EXPECT_TRUE(eventually(60, [&] {
        auto focus = search;
        focus.emplace_back("windowfocus");
        if (handle(focus) != 0) return true;
        handle({"key", "ctrl+a"});
        handle({"type", "--delay", "40", plain.string()});
        // Not taken while the dialog still looks at the path; one too many would go to the window behind it.
        handle({"key", "Return"});
        return eventually(5, [&] { return handle(search) != 0; });
    }));
    expectOpened(QStringLiteral("plain"));
}

TEST_F(FileDialog, IsTheProgramsWhereTheDesktopHasNone) {
    ASSERT_NO_FATAL_FAILURE(start("/nowhere/bus"));
    // It looks where movies are.
    const auto file = program->find(QStringLiteral("the file"), [](const Program::Item& item) {
        return item.name == QStringLiteral("käse.mp4");
    });
    ASSERT_TRUE(program->click(file)) << program->complaint();
    program->key({Keys::enter});
    expectOpened();
}

/// As a file manager does it: the first start opens its file, the second hands its own over.
TEST_F(FileDialog, IsNotNeededForAFileOnTheCommandLine) {
    const std::string bus = "unix:path=/nowhere/bus";
    const std::string runtime = (own / "runtime").string();
    fs::create_directories(runtime);
    const std::map<std::string, std::string> shared{
        {"HOME", home.string()}, {"DBUS_SESSION_BUS_ADDRESS", bus}, {"XDG_RUNTIME_DIR", runtime}};
    program.emplace(*session, shared, std::vector<std::string>{movie.string()});
    expectOpened();
    const fs::path other = home / "other.mp4";
    fs::copy_file(movie, other);
    Program second(*session, shared, {other.string()});
    EXPECT_TRUE(eventually(60, [&] { return !second.running(); }));
    EXPECT_TRUE(eventually(60, [&] { return program->windowShown(QStringLiteral("other — Ombrel Record")); }))
        << program->log();
}

} // namespace
