#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/wait.h>

// The switches that come before everything else, from the built program.

namespace {

namespace fs = std::filesystem;

#ifdef OMBREL_APPLICATION

class Entry : public testing::Test {
protected:
    /// Runs the program in the folder, without a display; its exit status.
    int run(const std::string& arguments) const {
        const int status =
            std::system(("cd '" + folder.path().string() +
                         "' && rm -rf */report.txt said && unset DISPLAY WAYLAND_DISPLAY && "
                         "HOME=$PWD/home XDG_STATE_HOME=$PWD/home timeout 60 '" OMBREL_PROGRAM "' " +
                         arguments + " >said 2>&1")
                            .c_str());
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128;
    }
    std::string contents(const char* file) const {
        std::ifstream stream(folder / file, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    /// Which of the two jobs that leave a report has run.
    std::string ran() const {
        std::string names;
        if (fs::exists(folder / "self/report.txt")) names += "self";
        if (fs::exists(folder / "update/report.txt")) names += "update";
        return names;
    }

    void SetUp() override { fs::create_directory(folder / "update"); }
    TemporaryFolder folder;
};

TEST_F(Entry, TheSwitchesComeInTheirOrder) {
    const struct {
        const char* arguments;
        int status;
        const char* ran;
    } cases[]{
        {"--selftest self", 0, "self"},
        {"--update-test update", 0, "update"},
        {"--update-test update --selftest self", 0, "self"},
        {"--film a b --selftest self", 0, "self"},
        {"--film a --update-test update", 0, "update"},
        {"--update-test update --selftest", 0, "update"}, // it lacks its argument
        {"--snapshot --update-test update", 0, ""},       // which takes the other switch for its folder
        {"sources --selftest", 2, ""},                    // verbs come after them
        {"plan --update-test update", 0, "update"},
        {"exprot recording", 2, ""}, // neither a verb nor a file
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.arguments);
        EXPECT_EQ(run(test.arguments), test.status) << contents("said");
        EXPECT_EQ(ran(), test.ran);
    }
}

TEST_F(Entry, JobsReportWhatTheyFound) {
    EXPECT_EQ(run("--selftest self"), 0);
    EXPECT_NE(contents("self/report.txt").find("FAIL: no display"), std::string::npos);
    EXPECT_EQ(run("--update-test update"), 0);
    EXPECT_NE(contents("update/report.txt").find("FAIL: "), std::string::npos);
    const auto write = [&](const char* file, const char* text) { std::ofstream(folder / file) << text; };
    write("update/key", "p7Q3gRZGAMqEDe1WcomtG+SL9JdBY8J9QOIA0kLfbKA=\n");
    write("update/feed.json", "{\"version\": \"0.2.0\", \"url\": \"https://example.org/0.2.0\", "
                              "\"notes\": \"Wayland.\"}\n");
    write("update/feed.json.sig",
          "5lJA50R2qifB7IrPJKKoTtFw+N+KteaaXk378Y2taymBxO7fgk9k2ZJdnPHAQEUQwcn+VFnc1L2k"
          "qT0i9gK8CA==");
    EXPECT_EQ(run("--update-test update"), 0);
    const std::string report = contents("update/report.txt");
    EXPECT_NE(report.find("0.2.0"), std::string::npos) << report;
    EXPECT_NE(report.find("a changed feed: refused\nPASS"), std::string::npos) << report;
}

#endif

} // namespace
