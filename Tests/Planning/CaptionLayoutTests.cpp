#include "RecordCore/Planning/CaptionLayout.h"

#include <gtest/gtest.h>

using namespace RecordCore;
using Reason = SpeedSegment::Reason;

namespace {

Plan asRecorded(double duration) {
    Plan plan;
    plan.segments = {{0, duration, 1, Reason::normal}};
    return plan;
}

Project saying(std::vector<CaptionWord> words) {
    Project project;
    project.captions = std::move(words);
    project.showCaptions = true;
    return project;
}

std::vector<std::size_t> wordCounts(const std::vector<CaptionLayout::Line>& lines) {
    std::vector<std::size_t> counts;
    for (const auto& line : lines)
        counts.push_back(line.words.size());
    return counts;
}

using Counts = std::vector<std::size_t>;

} // namespace

TEST(CaptionLayout, breaksLines) {
    struct Case {
        const char* what;
        std::vector<CaptionWord> words;
        Counts expected;
    };
    std::vector<CaptionWord> seven;
    for (int i = 0; i < 7; ++i)
        seven.push_back({"word", 1 + i * 0.3, 1.2 + i * 0.3});
    const std::vector<Case> cases{
        {"six words make a line", seven, {6, 1}},
        {"a gap breaks", {{"one", 1, 1.25}, {"two", 1.875, 2}, {"three", 2.75, 3}}, {2, 1}},
        {"a sentence ends",
         {{"Done.", 1, 1.2}, {"Next?", 1.3, 1.5}, {"Go!", 1.6, 1.8}, {"on", 1.9, 2}},
         {1, 1, 1, 1}},
        {"35 characters are too many",
         {{std::string(20, 'a'), 1, 1.2}, {std::string(14, 'b'), 1.3, 1.5}},
         {1, 1}},
        {"34 fit", {{std::string(20, 'a'), 1, 1.2}, {std::string(13, 'b'), 1.3, 1.5}}, {2}},
        {"characters, not bytes", {{"äöüäöüäöüäöüäöüäöüäö", 1, 1.2}, {"äöüäöüäöüäöüä", 1.3, 1.5}}, {2}},
        {"a long word stands alone", {{std::string(80, 'a'), 1, 1.2}, {"b", 1.3, 1.4}}, {1, 1}},
        {"nothing said", {}, {}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(wordCounts(CaptionLayout::lines(saying(c.words), asRecorded(20))), c.expected);
    }
    EXPECT_TRUE(CaptionLayout::lines(Project(), asRecorded(20)).empty());
    Project off = saying({{"word", 1, 2}});
    off.showCaptions = false;
    EXPECT_TRUE(CaptionLayout::shownLines(off, asRecorded(20)).empty());
    EXPECT_FALSE(CaptionLayout::look(off, asRecorded(20)).has_value());
}

TEST(CaptionLayout, timesLines) {
    const auto lines = CaptionLayout::lines(
        saying({{"first.", 0.02, 0.02}, {"second.", 0.3, 0.5}, {"third", 3, 3.5}}), asRecorded(20));
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0].start, 0);
    EXPECT_NEAR(lines[0].words[0].end, 0.1, 1e-12) << "a word lasts at least 0.08 s";
    EXPECT_NEAR(lines[0].end, 0.25, 1e-12) << "ends where the next begins";
    EXPECT_NEAR(lines[1].end, 0.85, 1e-12) << "lingers";
    EXPECT_NEAR(lines[2].start, 2.95, 1e-12);
}

TEST(CaptionLayout, followsThePlan) {
    Plan plan;
    plan.segments = {{0, 2, 1, Reason::normal}, {2, 4, 1, Reason::cut}, {4, 8, 2, Reason::manual}};
    const auto lines = CaptionLayout::lines(
        saying({{"kept", 1.5, 2.5}, {"cut", 2, 3}, {"gone", 3.9, 4.5}, {"fast", 4, 5}}), plan);
    ASSERT_EQ(lines.size(), 1U);
    ASSERT_EQ(lines[0].words.size(), 2U);
    EXPECT_NEAR(lines[0].words[0].end, 2, 1e-12) << "cut off with its segment";
    EXPECT_NEAR(lines[0].words[1].start, 2, 1e-12);
    EXPECT_NEAR(lines[0].words[1].end, 2.5, 1e-12);
}
