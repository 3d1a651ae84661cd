#include "OmbrelRecord/AppModel/CrashEntry.h"
#include "OmbrelRecord/AppModel/Diag.h"
#include "OmbrelRecord/AppModel/IsoTime.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/Support/TemporaryFolder.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>
#include <vector>

namespace {

using namespace OmbrelRecord;
using namespace std::chrono;
using testing::ContainsRegex;
using testing::MatchesRegex;

std::string contents(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    text << stream.rdbuf();
    return text.str();
}

TEST(Diag, StampsTimesAsIso8601) {
    struct Case {
        sys_seconds time;
        const char* text;
    };
    const Case cases[]{
        {sys_days(2026y / November / 14) + 18h + 2min + 19s, "2026-11-14T18:02:19Z"},
        {sys_days(2024y / February / 29) + 23h + 59min + 59s, "2024-02-29T23:59:59Z"},
        {sys_days(1970y / January / 1), "1970-01-01T00:00:00Z"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(IsoTime(c.time).text(), c.text);
}

TEST(Diag, TheFirstEntryMakesFileAndFolder) {
    const TemporaryFolder folder;
    DiagLog log(folder.path() / "Logs" / "Ombrel Record" / "ombrel-record.log");
    std::filesystem::remove_all(folder.path() / "Logs"); // the folder may go at any time
    log.log("record: capturing");
    log.flush();
    EXPECT_THAT(contents(log.file()),
                MatchesRegex("[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z record: capturing\n"));
}

TEST(Diag, LinesOfManyThreadsNeitherMixNorChangeOrder) {
    const TemporaryFolder folder;
    DiagLog log(folder / "log");
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&log, t] {
            for (int i = 0; i < 200; ++i)
                log.log("thread " + std::to_string(t) + " " + std::to_string(i));
        });
    for (std::thread& thread : threads)
        thread.join();
    log.flush();
    std::ifstream stream(log.file());
    std::vector<int> next(4, 0);
    std::string line;
    while (std::getline(stream, line)) {
        std::istringstream words(line);
        std::string stamp, word;
        int thread = -1, number = -1;
        ASSERT_TRUE(words >> stamp >> word >> thread >> number) << line;
        ASSERT_EQ(number, next[static_cast<std::size_t>(thread)]++) << line;
    }
    EXPECT_EQ(next, std::vector<int>(4, 200));
}

TEST(Diag, ALogOfMoreThanAMillionBytesIsDropped) {
    const TemporaryFolder folder;
    for (const auto& [bytes, kept] : {std::pair{1'000'000, true}, {1'000'001, false}}) {
        std::ofstream(folder / "log") << std::string(static_cast<std::size_t>(bytes), 'x');
        DiagLog(folder / "log").dropWhenLarge();
        EXPECT_EQ(std::filesystem::exists(folder / "log"), kept) << bytes;
    }
    DiagLog(folder / "none").dropWhenLarge();
}

TEST(Diag, AFolderThatCannotBeWrittenIsNoTrouble) {
    DiagLog log("/proc/nowhere/log");
    log.dropWhenLarge();
    log.log("nobody reads this");
    log.flush();
}

[[gnu::noinline]] void writeToNowhere() {
    volatile int* volatile nowhere = nullptr;
    *nowhere = 1;
}

struct Crash {
    const char* name;
    void (*crash)();
    int signal;
    const char* entry;
};

// Each of these ends its process: it runs in one of its own and its log is read afterwards.
class DiagDeathTest : public testing::TestWithParam<Crash> {};

INSTANTIATE_TEST_SUITE_P(
    , DiagDeathTest,
    testing::Values(Crash{"Error", [] { throw RecordCore::RecordingError("no pixel buffer pool"); }, SIGABRT,
                          "Z EXCEPTION RecordCore::RecordingError: no pixel buffer pool\n"},
                    Crash{"Number", [] { throw 7; }, SIGABRT, "Z EXCEPTION int: \n"},
                    Crash{"Segmentation", writeToNowhere, SIGSEGV,
                          "Z EXCEPTION SIGSEGV: address not mapped\n"},
                    Crash{"Abort", [] { std::abort(); }, SIGABRT, "Z EXCEPTION SIGABRT: \n"}),
    [](const auto& test) { return test.param.name; });

TEST_P(DiagDeathTest, LeavesAnEntryWithTheStack) {
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer catches crashes itself";
#endif
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const std::filesystem::path folder =
        std::filesystem::temp_directory_path() / ("ombrel-record-diag-" + std::string(GetParam().name));
    std::filesystem::remove_all(folder);
    EXPECT_EXIT(
        {
            ::setenv("XDG_STATE_HOME", folder.c_str(), 1);
            Diag::install("1.2", "Debian GNU/Linux 12");
            Diag::log("record: capturing");
            Diag::flush();
            []() noexcept { GetParam().crash(); }();
        },
        testing::KilledBySignal(GetParam().signal), "");
    const std::string log = contents(folder / "Logs" / "Ombrel Record" / "ombrel-record.log");
    std::filesystem::remove_all(folder);
    EXPECT_THAT(log, ContainsRegex("Z launch 1\\.2 Linux Debian GNU/Linux 12\n"));
    EXPECT_THAT(log, ContainsRegex("Z record: capturing\n"));
    const std::size_t entry = log.find(GetParam().entry);
    ASSERT_NE(entry, std::string::npos) << log;
    EXPECT_THAT(log.substr(entry), ContainsRegex("\n[^\n]*\\[0x[0-9a-f]+\\]\n")) << "a line of the stack";
    EXPECT_EQ(log.find("EXCEPTION"), log.rfind("EXCEPTION")) << "one entry for one crash";
}

} // namespace
