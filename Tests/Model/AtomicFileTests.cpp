#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/InputLog.h"
#include "RecordCore/Model/Project.h"
#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Model/Uuid.h"
#include "Tests/Support/TemporaryFolder.h"

#include <csignal>
#include <fstream>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace RecordCore;

namespace {

/// While it lives, no file of this process can grow beyond `bytes`: writing fails as on a full disk.
class FileSizeLimit {
public:
    explicit FileSizeLimit(rlim_t bytes) {
        signal = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &before);
        rlimit limit = before;
        limit.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &before);
        std::signal(SIGXFSZ, signal);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

private:
    rlimit before{};
    void (*signal)(int) = SIG_DFL;
};

std::vector<std::string> names(const std::filesystem::path& folder) {
    std::vector<std::string> list;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        list.push_back(entry.path().filename().string());
    return list;
}

/// The message with which `action` fails; empty when it does not.
std::string failure(const std::function<void()>& action) {
    try {
        action();
        return {};
    } catch (const RecordingError& error) {
        return error.what();
    }
}

TEST(AtomicFile, ReplacesAndCreates) {
    const TemporaryFolder folder;
    const auto file = folder / "a.json";
    writeFileAtomically(file, "old, and longer");
    writeFileAtomically(file, "new");
    EXPECT_EQ(readFile(file), "new");
    writeFileAtomically(file, "");
    EXPECT_EQ(readFile(file), "");
    EXPECT_THAT(names(folder.path()), testing::ElementsAre("a.json"));

    struct stat facts {};
    ASSERT_EQ(::stat(file.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 077, 0u) << "what was recorded is for its owner";
}

TEST(AtomicFile, WritesBesideTheFileWhateverDiskItIsOn) {
    const std::filesystem::path memory = "/dev/shm";
    if (::access(memory.c_str(), W_OK) != 0) GTEST_SKIP() << "no second file system to write to";
    const auto file = memory / ("ombrel-test-" + Uuid::fresh().text());
    EXPECT_EQ(failure([&] { writeFileAtomically(file, "x"); }), "");
    std::filesystem::remove(file);
}

TEST(AtomicFile, FullDiskLeavesTheOldFileAndNothingElse) {
    const TemporaryFolder folder;
    const auto file = folder / "a.json";
    writeFileAtomically(file, "old");
    {
        const FileSizeLimit full(1 << 16);
        EXPECT_THAT(failure([&] { writeFileAtomically(file, std::string(1 << 20, 'x')); }),
                    testing::HasSubstr(file.string()));

        InputLog log;
        log.cursor.assign(10000, {1, 0.5, 0.5});
        EXPECT_NE(failure([&] { log.save(file); }), "");
        Project project;
        project.title.assign(1 << 20, 't');
        EXPECT_NE(failure([&] { project.save(file); }), "");
    }
    EXPECT_EQ(readFile(file), "old");
    EXPECT_THAT(names(folder.path()), testing::ElementsAre("a.json"));
}

TEST(AtomicFile, RefusalsNameTheFileAndLeaveNothingBehind) {
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "taken");
    writeFileAtomically(folder / "file", "x");
    for (const std::filesystem::path& target :
         {folder / "no such folder" / "a.json", folder / "taken", folder / "file" / "a.json"}) {
        EXPECT_THAT(
            failure([&] { writeFileAtomically(target, "text"); }),
            testing::AllOf(testing::HasSubstr(target.string()), testing::HasSubstr("cannot be written")));
    }
    EXPECT_THAT(names(folder.path()), testing::UnorderedElementsAre("taken", "file"));
}

TEST(AtomicFile, UnwritableFolderLeavesTheOldFile) {
    const TemporaryFolder folder;
    const auto closed = folder / "closed";
    std::filesystem::create_directory(closed);
    writeFileAtomically(closed / "a.json", "old");
    ::chmod(closed.c_str(), 0555);
    // Root writes everywhere, so root tries as somebody else; the group and others may enter the folder.
    const bool root = ::geteuid() == 0;
    if (root) {
        ::chmod(folder.path().c_str(), 0755);
        ASSERT_EQ(::seteuid(65534), 0);
    }
    const std::string message = failure([&] { writeFileAtomically(closed / "a.json", "new"); });
    ASSERT_EQ(::seteuid(::getuid()), 0);
    ::chmod(closed.c_str(), 0755);
    EXPECT_THAT(message, testing::HasSubstr("cannot be written"));
    EXPECT_EQ(readFile(closed / "a.json"), "old");
    EXPECT_THAT(names(closed), testing::ElementsAre("a.json"));
}

TEST(AtomicFile, ReadsOnlyPlainFilesOfReasonableSize) {
    const TemporaryFolder folder;
    writeFileAtomically(folder / "a", "12345678");
    EXPECT_EQ(readFile(folder / "a", 8), "12345678");
    EXPECT_NE(failure([&] { readFile(folder / "a", 7); }), "");
    EXPECT_THAT(failure([&] { readFile(folder.path()); }), testing::HasSubstr("directory"));
    EXPECT_THAT(failure([&] { readFile(folder / "none"); }), testing::HasSubstr("No such file"));
    EXPECT_NE(failure([&] { readFile("/dev/zero", 1 << 20); }), "");
    // A file of holes as long as the largest disk: refused before memory is asked for.
    { std::ofstream(folder / "huge") << 'x'; }
    std::filesystem::resize_file(folder / "huge", std::uintmax_t{1} << 40);
    EXPECT_THAT(failure([&] { readFile(folder / "huge"); }), testing::HasSubstr("too large"));
    // Opening a pipe that nobody writes to would wait for ever.
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_NE(failure([&] { readFile(folder / "pipe"); }), "");
}

TEST(AtomicFile, KeepsWhatCannotBeRead) {
    const TemporaryFolder folder;
    writeFileAtomically(folder / "project.json", "first");
    EXPECT_EQ(keepBeside(folder / "project.json").filename(), "project (unreadable).json");
    EXPECT_EQ(readFile(folder / "project.json"), "first");
    writeFileAtomically(folder / "project.json", "second");
    EXPECT_EQ(keepBeside(folder / "project.json").filename(), "project (unreadable 2).json");
    EXPECT_EQ(readFile(folder / "project (unreadable).json"), "first");
    EXPECT_EQ(readFile(folder / "project (unreadable 2).json"), "second");
    EXPECT_THAT(failure([&] { keepBeside(folder / "none"); }), testing::HasSubstr("No such file"));
}

} // namespace
