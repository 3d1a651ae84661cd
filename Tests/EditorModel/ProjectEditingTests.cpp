#include "OmbrelRecord/EditorModel/EditHistory.h"
#include "OmbrelRecord/EditorModel/ProjectEditing.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace {

using namespace OmbrelRecord;
using namespace RecordCore;
using testing::ElementsAre;
using Reason = SpeedSegment::Reason;

struct Times {
    double start;
    double end;
    double speed;
    bool operator==(const Times&) const = default;
};

std::vector<Times> times(const std::optional<std::vector<SpeedBlock>>& blocks) {
    std::vector<Times> list;
    for (const SpeedBlock& block : blocks.value_or(std::vector<SpeedBlock>{}))
        list.push_back({block.start, block.end, block.speed});
    return list;
}

TEST(ProjectEditing, ABlockStaysInTheSourceAndLongEnough) {
    struct Case {
        const char* what;
        double start, end; ///< dragged to, in a source of 10 s
        double clampedStart, clampedEnd;
    };
    const Case cases[]{
        {"inside", 2, 4, 2, 4},
        {"before the source", -3, 4, 0, 4},
        {"after the source", 6, 14, 6, 10},
        {"wholly after the source", 12, 14, 9.75, 10},
        {"start past the end", 5, 4, 3.75, 4},
        {"too short", 4, 4.125, 3.875, 4.125},
        {"too short at the start", 0, 0.125, 0, 0.25},
        {"end before the source", 0, -1, 0, 0.25},
    };
    for (const Case& c : cases) {
        SpeedBlock block = SpeedBlock::make(c.start, c.end, 2, Reason::manual);
        ProjectEditing::clampTimes(block, 0.25, 10);
        EXPECT_EQ(block.start, c.clampedStart) << c.what;
        EXPECT_EQ(block.end, c.clampedEnd) << c.what;
    }
    SpeedBlock block = SpeedBlock::make(0, 1, 2, Reason::manual);
    ProjectEditing::clampTimes(block, 0.25, 0.125);
    EXPECT_EQ(block.start, 0);
    EXPECT_EQ(block.end, 0.125) << "a source that is shorter is filled";
}

TEST(ProjectEditing, EditsABlockOfEachKind) {
    const SpeedBlock speed = SpeedBlock::make(1, 3, 4, Reason::idle);
    const ZoomBlock zoom = ZoomBlock::make(1, 3, 0.5, 0.5, 1.5);
    Project project;
    EXPECT_TRUE(ProjectEditing::editSpeed(
        project, {speed}, speed.id, [](SpeedBlock& b) { b.end = 1; }, 10));
    ASSERT_EQ(project.speedBlocks->size(), 1u);
    EXPECT_EQ(project.speedBlocks->front().id, speed.id);
    EXPECT_DOUBLE_EQ(project.speedBlocks->front().end - project.speedBlocks->front().start, 0.2);
    EXPECT_TRUE(ProjectEditing::editZoom(
        project, {zoom}, zoom.id, [](ZoomBlock& b) { b.end = 1; }, 10));
    EXPECT_DOUBLE_EQ(project.zoomBlocks->front().end - project.zoomBlocks->front().start, 0.3);
    Project untouched;
    EXPECT_FALSE(ProjectEditing::editSpeed(
        untouched, {speed}, zoom.id, [](SpeedBlock&) {}, 10));
    EXPECT_EQ(untouched, Project());
}

TEST(ProjectEditing, ASpeedCarvesWhatItCovers) {
    struct Case {
        const char* what;
        TimeRange range;
        double speed;
        std::vector<Times> left;
    };
    const std::vector<SpeedBlock> blocks{SpeedBlock::make(1, 5, 4, Reason::idle),
                                         SpeedBlock::make(6, 7, 8, Reason::agentWorking)};
    const Case cases[]{
        {"apart", {8, 9}, 2, {{1, 5, 4}, {6, 7, 8}, {8, 9, 2}}},
        {"touching", {5, 6}, 2, {{1, 5, 4}, {5, 6, 2}, {6, 7, 8}}},
        {"the middle", {2, 3}, 2, {{1, 2, 4}, {2, 3, 2}, {3, 5, 4}, {6, 7, 8}}},
        {"cleared in the middle", {2, 3}, 1, {{1, 2, 4}, {3, 5, 4}, {6, 7, 8}}},
        {"short remainders vanish", {1.125, 4.875}, 1, {{6, 7, 8}}},
        {"over both", {4, 6.5}, 16, {{1, 4, 4}, {4, 6.5, 16}, {6.5, 7, 8}}},
        {"everything", {0, 10}, 1, {}},
    };
    for (const Case& c : cases) {
        Project project;
        const auto made = ProjectEditing::setSpeed(project, blocks, c.range, c.speed);
        EXPECT_EQ(times(project.speedBlocks), c.left) << c.what;
        EXPECT_EQ(made.has_value(), c.speed != 1.0) << c.what;
    }
    for (const auto& [range, speed] : {std::pair{TimeRange{3, 3}, 2.0},
                                       {TimeRange{1, 2}, 0.0},
                                       {TimeRange{1, std::nan("")}, 2.0},
                                       {TimeRange{1, 2}, INFINITY}}) {
        Project project;
        ProjectEditing::setSpeed(project, blocks, range, speed);
        EXPECT_EQ(project, Project()) << range.start << ' ' << range.end << ' ' << speed;
    }
}

TEST(ProjectEditing, AZoomCarvesByTheSameRule) {
    const std::vector<ZoomBlock> blocks{ZoomBlock::make(1, 5, 0.2, 0.2, 1.5)};
    Project project;
    const ZoomBlock added = ZoomBlock::make(1.125, 3, 0.5, 0.5, 1.7);
    ASSERT_TRUE(ProjectEditing::addZoom(project, blocks, added));
    ASSERT_EQ(project.zoomBlocks->size(), 2u);
    EXPECT_EQ(project.zoomBlocks->at(0), added) << "what is left of 0.125 s is gone";
    EXPECT_EQ(project.zoomBlocks->at(1).start, 3);
    EXPECT_EQ(project.zoomBlocks->at(1).end, 5);
    EXPECT_EQ(project.zoomBlocks->at(1).zoom, 1.5);
}

TEST(ProjectEditing, DeletingMakesTheListTheProjectsOwn) {
    const SpeedBlock block = SpeedBlock::make(1, 5, 4, Reason::idle);
    Project project;
    EXPECT_FALSE(ProjectEditing::deleteSpeed(project, {block}, Uuid::fresh()));
    EXPECT_EQ(project.speedBlocks, std::nullopt);
    EXPECT_TRUE(ProjectEditing::deleteSpeed(project, {block}, block.id));
    ASSERT_TRUE(project.speedBlocks.has_value());
    EXPECT_TRUE(project.speedBlocks->empty());
}

TEST(ProjectEditing, CutsTakeTheirSplitsAndAreRestoredWhenTouched) {
    Project project;
    project.splits = {1, 2, 3, 4};
    ProjectEditing::cut(project, {2, 4});
    EXPECT_THAT(project.cuts, ElementsAre(TimeRange{2, 4}));
    EXPECT_THAT(project.splits, ElementsAre(1, 4)) << "a split at the end of the cut stays";

    struct Case {
        TimeRange range;
        std::size_t left; ///< of the cuts [2, 4) and [6, 8)
    };
    const Case cases[]{{{4, 5}, 1},         {{0, 2}, 1}, {{4.5, 5.5}, 2}, {{3, 7}, 0},
                       {{4.0000005, 5}, 1}, {{5, 6}, 1}, {{0, 1}, 2},     {{8.00001, 9}, 2}};
    for (const Case& c : cases) {
        Project restored;
        restored.cuts = {{2, 4}, {6, 8}};
        ProjectEditing::restoreCuts(restored, c.range);
        EXPECT_EQ(restored.cuts.size(), c.left) << c.range.start << ' ' << c.range.end;
    }
}

TEST(ProjectEditing, InteriorCutsAreThoseAwayFromTheTrims) {
    Project project;
    project.trimStart = 1;
    project.cuts = {{0.5, 1.5}, {1.0078125, 1.5}, {2, 3}, {2.5, 4}, {9, 10}};
    EXPECT_THAT(ProjectEditing::interiorCuts(project, 10), ElementsAre(TimeRange{2, 4}));
    EXPECT_THAT(ProjectEditing::interiorCuts(project, 20), ElementsAre(TimeRange{2, 4}, TimeRange{9, 10}));
    project.trimEnd = 4.0078125;
    EXPECT_TRUE(ProjectEditing::interiorCuts(project, 20).empty());
}

TEST(ProjectEditing, SplitsOnlyWellInsideAPiece) {
    struct Case {
        double time;
        bool splits;
    };
    // Kept: [1, 3) and [5, 9), split at 7.
    const Case cases[]{{2, true},     {0.5, false},  {4, false},    {1.04, false}, {1.06, true},
                       {2.96, false}, {7.04, false}, {6.96, false}, {7.06, true},  {9, false}};
    for (const Case& c : cases) {
        Project project;
        project.trimStart = 1;
        project.trimEnd = 9;
        project.cuts = {{3, 5}};
        project.splits = {7};
        EXPECT_EQ(ProjectEditing::split(project, c.time, 10), c.splits) << c.time;
        EXPECT_EQ(project.splits.size(), c.splits ? 2u : 1u) << c.time;
    }
}

TEST(ProjectEditing, MarksKeepADistance) {
    struct Case {
        bool start;
        double time;
        double trimStart, trimEnd; ///< afterwards, in a source of 10 s marked from 2 to 6
    };
    const Case cases[]{{true, 3, 3, 6},  {true, 8, 8, 8.04},  {true, 5.97, 5.97, 6.01}, {true, 10, 9.96, 10},
                       {false, 4, 2, 4}, {false, 1, 0.96, 1}, {false, 0, 0, 0.04},      {false, 10, 2, 10}};
    for (const Case& c : cases) {
        Project project;
        project.trimStart = 2;
        project.trimEnd = 6;
        (c.start ? ProjectEditing::markStart : ProjectEditing::markEnd)(project, c.time, 10);
        EXPECT_DOUBLE_EQ(project.trimStart, c.trimStart) << c.time;
        EXPECT_DOUBLE_EQ(project.trimEnd.value_or(-1), c.trimEnd) << c.time;
    }
    Project project;
    ProjectEditing::markStart(project, 3, 10);
    EXPECT_EQ(project.trimEnd, 10.0) << "an absent end counts as the source's";
}

TEST(ProjectEditing, CountsWhatIsSkipped) {
    Plan plan;
    plan.segments = {{0, 1, 1, Reason::normal},
                     {1, 2, 40, Reason::idle},
                     {2, 3, 40, Reason::cut},
                     {3, 4, 0.5, Reason::manual},
                     {4, 5, 1.5, Reason::manual}};
    EXPECT_EQ(ProjectEditing::skippedCount(plan), 2);
}

TEST(ProjectEditing, ANewZoomFramesWhatHappened) {
    Plan plan;
    struct Case {
        const char* what;
        std::vector<ActivitySample> samples;
        double maxZoom;
        double x, y, zoom;
    };
    const NRect corner{0.5, 0.5, 0.4, 0.4}; // 0.5 / 1.1 / 0.2 is 2.27
    const Case cases[]{
        {"nothing", {}, 1.7, 0.5, 0.5, 1.35},
        {"outside the range", {{9, 1, corner}}, 1.7, 0.5, 0.5, 1.35},
        {"a corner, as far as allowed", {{2, 1, corner}}, 1.7, 0.7, 0.7, 1.7},
        {"a corner", {{2, 1, corner}}, 3, 0.7, 0.7, 0.5 / (1.1 * 0.2)},
        {"everything", {{2, 1, NRect::full()}}, 3, 0.5, 0.5, 1.35},
        {"the user's limit wins", {{2, 1, corner}}, 1.2, 0.7, 0.7, 1.2},
        {"by energy",
         {{2, 3, NRect{0.2, 0.2, 0, 0}}, {3, 1, NRect{0.6, 0.2, 0, 0}}},
         3,
         0.3,
         0.2,
         0.5 / (1.1 * 0.3)},
    };
    for (const Case& c : cases) {
        const ZoomBlock block = ProjectEditing::framed({1, 4}, plan, c.samples, std::nullopt, c.maxZoom);
        EXPECT_NEAR(block.x, c.x, 1e-12) << c.what;
        EXPECT_NEAR(block.y, c.y, 1e-12) << c.what;
        EXPECT_NEAR(block.zoom, c.zoom, 1e-12) << c.what;
        EXPECT_EQ(block.start, 1);
        EXPECT_EQ(block.end, 4);
    }
    InputLog log;
    log.events = {{2, InputLog::Event::Kind::click, 0.25, 0.75}, {3, InputLog::Event::Kind::key, {}, {}}};
    const ZoomBlock block = ProjectEditing::framed({1, 4}, plan, {}, log, 1.7);
    EXPECT_EQ(block.x, 0.25);
    EXPECT_EQ(block.y, 0.75);
    EXPECT_EQ(block.zoom, 1.7);
}

TEST(EditHistory, MergesOneDragAndNothingElse) {
    Project project;
    EditHistory history;
    for (int i = 0; i < 32; ++i)
        history.record(project, "padding", i * 0.0625); // two seconds of dragging
    EXPECT_EQ(history.undoCount(), 1u);
    history.record(project, "padding", 1.9375 + 0.75);
    EXPECT_EQ(history.undoCount(), 1u);
    history.record(project, "padding", 2.6875 + 0.8125);
    EXPECT_EQ(history.undoCount(), 2u) << "0.8 s are too long";
    history.record(project, "radius", 3.6);
    EXPECT_EQ(history.undoCount(), 3u);
    history.record(project, std::nullopt, 3.7);
    history.record(project, std::nullopt, 3.7);
    history.record(project, "radius", 3.8);
    EXPECT_EQ(history.undoCount(), 6u) << "an edit between two of a kind parts them";
    history.undo(project);
    history.record(project, "radius", 3.9);
    EXPECT_EQ(history.undoCount(), 6u) << "after undo an edit is a step of its own";
    EXPECT_FALSE(history.canRedo());
}

TEST(EditHistory, TenThousandRandomEditsAndUndosReturnToTheStart) {
    std::mt19937 random(7);
    const auto below = [&random](double limit) { return std::uniform_real_distribution<>(0, limit)(random); };
    const auto chance = [&below](double share) { return below(1) < share; };
    constexpr double duration = 60;
    const Project start;
    Project project = start;
    EditHistory history;
    std::vector<Project> expected; // every state one can undo to
    double now = 0;
    for (int i = 0; i < 10'000; ++i) {
        now += below(1.6);
        const bool full = expected.size() >= EditHistory::mostEntries - 1;
        if (full || chance(0.45)) {
            if (auto earlier = history.undo(project)) {
                ASSERT_EQ(*earlier, expected.back()) << i;
                if (chance(0.3)) { // there and back
                    ASSERT_EQ(history.redo(*earlier), project) << i;
                    continue;
                }
                project = std::move(*earlier);
                expected.pop_back();
            } else {
                ASSERT_TRUE(expected.empty());
            }
            continue;
        }
        Project next = project;
        const TimeRange range = TimeRange::between(below(duration), below(duration));
        std::vector<SpeedBlock> speeds = project.speedBlocks.value_or(std::vector<SpeedBlock>{});
        std::vector<ZoomBlock> zooms = project.zoomBlocks.value_or(std::vector<ZoomBlock>{});
        switch (static_cast<int>(below(9))) {
        case 0:
            ProjectEditing::setSpeed(next, speeds, range, chance(0.3) ? 1 : below(40) + 0.1);
            break;
        case 1:
            ProjectEditing::addZoom(next, zooms, ZoomBlock::make(range.start, range.end, below(1), 0.5, 2));
            break;
        case 2:
            ProjectEditing::cut(next, range);
            break;
        case 3:
            ProjectEditing::restoreCuts(next, range);
            break;
        case 4:
            ProjectEditing::split(next, range.start, duration);
            break;
        case 5:
            ProjectEditing::markStart(next, range.start, duration);
            break;
        case 6:
            ProjectEditing::markEnd(next, range.end, duration);
            break;
        case 7:
            if (!speeds.empty()) {
                const Uuid id = speeds[static_cast<std::size_t>(below(double(speeds.size())))].id;
                if (chance(0.5))
                    ProjectEditing::deleteSpeed(next, speeds, id);
                else
                    ProjectEditing::editSpeed(
                        next, speeds, id, [&](SpeedBlock& b) { b.end = below(80) - 10; }, duration);
            }
            break;
        default:
            next.padding = below(0.2);
        }
        if (next == project) continue;
        const std::size_t before = history.undoCount();
        history.record(project, chance(0.3) ? std::optional<std::string>("drag") : std::nullopt, now);
        if (history.undoCount() > before) expected.push_back(project);
        project = std::move(next);
        for (const std::optional<std::vector<SpeedBlock>>& list : {project.speedBlocks})
            for (const SpeedBlock& block : list.value_or(std::vector<SpeedBlock>{}))
                ASSERT_TRUE(0 <= block.start && block.start < block.end && block.end <= duration) << i;
    }
    while (auto earlier = history.undo(project)) {
        ASSERT_EQ(*earlier, expected.back());
        expected.pop_back();
        project = std::move(*earlier);
    }
    EXPECT_EQ(project, start);
    EXPECT_TRUE(expected.empty());

    for (int i = 0; i < 1000; ++i) {
        Project older;
        older.padding = i;
        history.record(older, std::nullopt, i);
        ASSERT_LE(history.undoCount(), 200u);
    }
    int steps = 0;
    double oldest = -1;
    while (auto earlier = history.undo(project)) {
        oldest = earlier->padding;
        ++steps;
    }
    EXPECT_EQ(steps, 200);
    EXPECT_EQ(oldest, 800) << "the oldest fall off";
}

} // namespace
