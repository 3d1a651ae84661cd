#include "OmbrelRecord/Transcriber/CaptionFile.h"
#include "RecordCore/Model/AtomicFile.h"
#include "RecordCore/Model/RecordingError.h"
#include "Tests/Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

using namespace OmbrelRecord;
using namespace RecordCore;
using CaptionLayout::Line;
using Reason = SpeedSegment::Reason;

namespace {

Line line(const std::string& text, double start, double end) {
    return {{{text, start, end}}, start, end};
}

} // namespace

TEST(CaptionFile, writesSubRipAndWebVtt) {
    const std::vector<Line> lines{
        {{{"Fish", 0, 0.4}, {"&", 0.5, 0.6}, {"<b>chips</b>", 0.7, 1}}, 0, 1.35},
        {{{"a", 61.5, 61.6}, {"-->", 61.7, 61.9}, {"{\\an8}b", 62, 62.25}}, 61.45, 3599.9996},
        {{{"Grüße\n\n\tvon", 3600, 3600.5}}, 3600, 360000.0004},
    };
    EXPECT_EQ(CaptionFile::text(lines, CaptionFile::Format::srt), "1\n"
                                                                  "00:00:00,000 --> 00:00:01,350\n"
                                                                  "Fish & <\u2060b>chips<\u2060/b>\n"
                                                                  "\n"
                                                                  "2\n"
                                                                  "00:01:01,450 --> 01:00:00,000\n"
                                                                  "a --\u2060> {\u2060\\an8}b\n"
                                                                  "\n"
                                                                  "3\n"
                                                                  "01:00:00,000 --> 100:00:00,000\n"
                                                                  "Grüße von\n"
                                                                  "\n");
    EXPECT_EQ(CaptionFile::text(lines, CaptionFile::Format::vtt), "WEBVTT\n"
                                                                  "\n"
                                                                  "00:00:00.000 --> 00:00:01.350\n"
                                                                  "Fish &amp; &lt;b&gt;chips&lt;/b&gt;\n"
                                                                  "\n"
                                                                  "00:01:01.450 --> 01:00:00.000\n"
                                                                  "a --&gt; {\\an8}b\n"
                                                                  "\n"
                                                                  "01:00:00.000 --> 100:00:00.000\n"
                                                                  "Grüße von\n"
                                                                  "\n");
    EXPECT_EQ(CaptionFile::text({}, CaptionFile::Format::vtt), "WEBVTT\n\n");
    EXPECT_EQ(CaptionFile::text({}, CaptionFile::Format::srt), "");
}

TEST(CaptionFile, neverOverlapsAndNeverGoesBack) {
    const std::vector<Line> lines{
        line("one", 0.0006, 0.9996), // rounds up, both
        line("two", 0.9994, 0.9995), // would start before "one" has ended, and end before it starts
        line(" \t", 1, 2),           // nothing to see
        line("three", 1.0005, 2),
    };
    EXPECT_EQ(CaptionFile::text(lines, CaptionFile::Format::srt),
              "1\n00:00:00,001 --> 00:00:01,000\none\n\n"
              "2\n00:00:01,000 --> 00:00:01,001\ntwo\n\n"
              "3\n00:00:01,001 --> 00:00:02,000\nthree\n\n");
}

TEST(CaptionFile, followsTheFilmWhereThereIsAPlan) {
    Project project;
    project.showCaptions = false; // a file of captions does not depend on what the film shows
    project.captions =
        std::vector<CaptionWord>{{"start", 1, 1.5}, {"lost", 5, 5.5}, {"fast", 12, 13}, {"last", 19.5, 20}};
    Plan plan;
    plan.segments = {{0, 4, 1, Reason::normal}, {4, 10, 1, Reason::cut}, {10, 20, 4, Reason::idle}};

    const auto film = CaptionFile::lines(project, &plan);
    ASSERT_EQ(film.size(), 3U);
    EXPECT_EQ(film[0].words[0].text, "start");
    EXPECT_EQ(film[1].words[0].text, "fast");
    EXPECT_DOUBLE_EQ(film[1].words[0].start, 4.5);
    EXPECT_DOUBLE_EQ(film[2].end, 6.5) << "lingers past the end of the film";

    const auto recording = CaptionFile::lines(project, nullptr);
    ASSERT_EQ(recording.size(), 4U);
    EXPECT_DOUBLE_EQ(recording[1].words[0].start, 5);
    EXPECT_DOUBLE_EQ(recording[3].words[0].end, 20);
}

TEST(CaptionFile, replacesAFileAsAWhole) {
    const TemporaryFolder folder;
    const auto file = folder / "captions.srt";
    CaptionFile::write("old", file);
    CaptionFile::write("new", file);
    EXPECT_EQ(readFile(file), "new");
    struct stat facts {};
    ASSERT_EQ(::stat(file.c_str(), &facts), 0);
    const mode_t mask = ::umask(0);
    ::umask(mask);
    EXPECT_EQ(facts.st_mode & 0777U, 0666U & ~mask) << "a file to be given away";

    EXPECT_THROW(CaptionFile::write("x", folder / "missing" / "captions.srt"), RecordingError);
    std::filesystem::create_directory(folder / "taken.srt");
    EXPECT_THROW(CaptionFile::write("x", folder / "taken.srt"), RecordingError);
    std::size_t left = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.path()))
        ++left;
    EXPECT_EQ(left, 2U) << "a temporary file was left behind";
}
