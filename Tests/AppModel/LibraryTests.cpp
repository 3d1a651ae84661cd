#include "OmbrelRecord/AppModel/Library.h"
#include "RecordCore/Model/RecordingError.h"
#include "RecordCore/Model/RecordingFiles.h"
#include "Tests/Support/TemporaryFolder.h"

#include <sys/stat.h>

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace OmbrelRecord;
using namespace std::chrono;
namespace fs = std::filesystem;
using RecordCore::RecordingError;

void touch(const fs::path& file) {
    fs::create_directories(file.parent_path());
    std::ofstream(file) << "x";
}

std::vector<std::string> names(const std::vector<Recording>& recordings) {
    std::vector<std::string> list;
    for (const Recording& recording : recordings)
        list.push_back(recording.folder.filename().string());
    return list;
}

TEST(Library, NewFoldersAreNamedByTheLocalTimeAndPrivate) {
    const TemporaryFolder folder;
    ::setenv("TZ", "UTC-1", 1); // an hour ahead of UTC
    ::tzset();
    const Library library(folder / "Videos");
    const auto now = sys_days(2026y / November / 14) + 17h + 2min + 19s;
    const fs::path made = library.newFolder(now);
    EXPECT_EQ(made, folder.path() / "Videos" / "Recording 2026-11-14 at 18.02.19");
    struct stat facts {};
    ASSERT_EQ(::stat(made.c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0777, 0700u);
    EXPECT_THROW(library.newFolder(now), RecordingError) << "a recording is never written over";
    ::unsetenv("TZ");
    ::tzset();

    touch(folder / "file");
    EXPECT_THROW(Library(folder / "file").newFolder(), RecordingError);
}

TEST(Library, ListsFoldersWithAVideoNewestFirst) {
    const TemporaryFolder folder;
    const Library library(folder.path());
    EXPECT_TRUE(Library(folder / "none").recordings().empty());
    for (const char* name : {"b", "a", "c"}) {
        touch(folder.path() / name / "recording.mp4");
        // The file system's clock ticks a few hundred times a second.
        const auto made = fs::last_write_time(folder.path() / name);
        while (fs::last_write_time(folder.path() / name) == made)
            touch(folder.path() / name / "tick"), fs::remove(folder.path() / name / "tick");
    }
    touch(folder / "failed start/camera.mp4");
    touch(folder / "Films/a – YouTube.mp4");
    const std::vector<Recording> found = library.recordings();
    if (!found.empty() && found.front().date == Recording::distantPast)
        EXPECT_THAT(names(found), testing::ElementsAre("c", "b", "a")) << "by name where there are no dates";
    else
        EXPECT_THAT(names(found), testing::ElementsAre("c", "a", "b"));
    ASSERT_EQ(found.size(), 3u);
    EXPECT_EQ(found[0].video(), folder.path() / "c" / "recording.mp4");
    EXPECT_EQ(found[0].log(), std::nullopt);
    touch(found[0].folder / "input.json");
    EXPECT_EQ(found[0].log(), found[0].folder / "input.json");
}

TEST(Library, UnfinishedRecordingsAreThoseWithAJournal) {
    const TemporaryFolder folder;
    for (const char* name : {"whole", "cut off"})
        touch(folder.path() / name / "recording.mp4");
    touch(RecordCore::RecordingFiles{folder / "cut off"}.journal());
    touch(RecordCore::RecordingFiles{folder / "nothing came"}.journal());
    EXPECT_THAT(names(Library(folder.path()).unfinished()), testing::ElementsAre("cut off"));
}

TEST(Library, ThrowsAwayIntoTheTrash) {
    const TemporaryFolder folder;
    ::setenv("XDG_DATA_HOME", (folder / "data").c_str(), 1);
    touch(folder / "Recording/recording.mp4");
    moveToTrash(folder / "Recording");
    EXPECT_FALSE(fs::exists(folder / "Recording"));
    EXPECT_TRUE(fs::exists(folder / "data/Trash/files/Recording/recording.mp4"));
    EXPECT_TRUE(fs::exists(folder / "data/Trash/info/Recording.trashinfo"));
    EXPECT_THROW(moveToTrash(folder / "Recording"), RecordingError);
    ::unsetenv("XDG_DATA_HOME");
}

} // namespace
