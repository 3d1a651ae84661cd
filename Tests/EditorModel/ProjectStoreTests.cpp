#include "OmbrelRecord/EditorModel/ProjectStore.h"
#include "Tests/Support/TemporaryFolder.h"

#include <sys/wait.h>
#include <unistd.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>
#include <chrono>
#include <csignal>
#include <fstream>
#include <gtest/gtest.h>
#include <random>
#include <sstream>

namespace {

using namespace OmbrelRecord;
using namespace RecordCore;
namespace fs = std::filesystem;

std::string contents(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

void runFor(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

TEST(ProjectStore, WritesSoonAfterTheLastChangeAndAtTheEnd) {
    const TemporaryFolder folder;
    const fs::path file = folder / "project.json";
    Project project;
    {
        ProjectStore store(file);
        EXPECT_EQ(store.load(), std::nullopt);
        project.padding = 0.1;
        store.schedule(project);
        EXPECT_FALSE(fs::exists(file)) << "not at once";
        for (int i = 0; i < 200 && !fs::exists(file); ++i)
            runFor(10);
        ASSERT_TRUE(Project::load(file).has_value());
        EXPECT_EQ(Project::load(file)->padding, 0.1);
        project.padding = 0.2;
        store.schedule(project);
    }
    EXPECT_EQ(Project::load(file)->padding, 0.2) << "what is not written yet is when the store goes";
}

TEST(ProjectStore, KeepsAFileThatIsNoProject) {
    const TemporaryFolder folder;
    const fs::path file = folder / "project.json";
    for (const char* broken : {"{\"padding\": \"wide\"}", "[1]"}) {
        std::ofstream(file) << broken;
        ProjectStore store(file);
        std::string problem;
        EXPECT_EQ(store.load(&problem), std::nullopt);
        EXPECT_NE(problem, "");
        EXPECT_EQ(contents(file), broken) << "looking at it changes nothing";
        store.schedule(Project());
        store.flush();
        EXPECT_TRUE(Project::load(file).has_value());
        Project changed;
        changed.padding = 0.1;
        store.schedule(changed);
        store.flush();
    }
    EXPECT_EQ(contents(folder / "project (unreadable).json"), "{\"padding\": \"wide\"}");
    EXPECT_EQ(contents(folder / "project (unreadable 2).json"), "[1]");
    EXPECT_FALSE(fs::exists(folder / "project (unreadable 3).json"));
}

TEST(ProjectStore, TellsWhenItCannotWriteAndTriesAgain) {
    const TemporaryFolder folder;
    fs::create_directory(folder / "gone");
    ProjectStore store(folder.path() / "gone" / "project.json");
    fs::remove(folder / "gone");
    QString failure;
    QObject::connect(&store, &ProjectStore::failed, [&](const QString& text) { failure = text; });
    store.schedule(Project());
    store.flush();
    QCoreApplication::processEvents();
    EXPECT_TRUE(failure.contains(QStringLiteral("project.json"))) << failure.toStdString();
    fs::create_directory(folder / "gone");
    store.schedule(Project());
    store.flush();
    EXPECT_TRUE(Project::load(folder.path() / "gone" / "project.json").has_value());
}

/// Edits all the time and tells through the pipe what it has done so far.
[[noreturn]] void editForever(const fs::path& file, int pipe) {
    ProjectStore store(file);
    Project project = store.load().value_or(Project());
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, [&] {
        project.padding += 1;
        project.splits.push_back(project.padding);
        store.schedule(project);
        const auto now =
            std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
        const double told[]{project.padding, now};
        if (::write(pipe, told, sizeof told) != sizeof told) ::_exit(1);
    });
    timer.start(7);
    QCoreApplication::exec();
    ::_exit(1);
}

TEST(ProjectStore, KilledAtAnyMomentItLeavesAWholeProject) {
    // The child starts from the test program itself: threads do not survive a fork.
    if (const char* file = std::getenv("OMBREL_EDIT_FOREVER"))
        editForever(file, std::atoi(std::getenv("OMBREL_EDIT_PIPE")));

    const char* wanted = std::getenv("OMBREL_KILLS");
    const int kills = wanted ? std::atoi(wanted) : 5;
    const TemporaryFolder folder;
    const fs::path file = folder / "project.json";
    Project().save(file);
    const std::string program = fs::read_symlink("/proc/self/exe").string();
    std::mt19937 random(11);
    double worst = 0;
    for (int i = 0; i < kills; ++i) {
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            ::setenv("OMBREL_EDIT_PIPE", std::to_string(ends[1]).c_str(), 1);
            ::setenv("OMBREL_EDIT_FOREVER", file.c_str(), 1);
            ::execl(program.c_str(), program.c_str(), "--gtest_filter=ProjectStore.KilledAtAnyMoment*",
                    "--gtest_brief=1", nullptr);
            ::_exit(1);
        }
        ::close(ends[1]);
        std::vector<std::pair<double, double>> done; // what was edited, and when
        const auto readOne = [&] {
            double told[2];
            const ssize_t count = ::read(ends[0], told, sizeof told);
            if (count == sizeof told) done.emplace_back(told[0], told[1]);
            return count;
        };
        const double start = Project::load(file)->padding;
        const int edits = std::uniform_int_distribution<>(1, 250)(random);
        while (static_cast<int>(done.size()) < edits && readOne() > 0) {
        }
        ::kill(child, SIGKILL);
        const auto killed =
            std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
        int status = 0;
        ::waitpid(child, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the editor ended by itself";
        while (readOne() > 0) {
        }
        ::close(ends[0]);
        const auto project = Project::load(file);
        ASSERT_TRUE(project.has_value()) << contents(file);
        EXPECT_GE(project->padding, start);
        EXPECT_EQ(project->splits.size(), static_cast<std::size_t>(project->padding - 0.011 + 0.5))
            << "whole";
        for (const auto& [padding, when] : done)
            if (padding > project->padding + 0.5) {
                worst = std::max(worst, killed - when);
                break;
            }
    }
    RecordProperty("worst", std::to_string(worst));
    printf("killed %d times: at most the last %.3f s of edits were lost\n", kills, worst);
    EXPECT_LT(worst, 2) << "a busy machine may write late; at rest it is half a second";
}

} // namespace
