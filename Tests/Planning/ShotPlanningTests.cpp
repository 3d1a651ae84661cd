#include "RecordCore/Planning/Planner.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace RecordCore;

namespace {

const SourceInfo wideSource{1920, 1080, 60, 60, false};

InputLog clicksAt(std::initializer_list<InputLog::Event> events) {
    InputLog log;
    log.events = events;
    return log;
}

InputLog::Event click(double t, double x, double y) {
    return {t, InputLog::Event::Kind::click, x, y};
}

/// Fifteen samples a second of change in one place over [from, to).
std::vector<ActivitySample> change(double from, double to, const NRect& focus, double energy = 0.1) {
    std::vector<ActivitySample> samples;
    for (double t = from; t < to; t += 1.0 / 15)
        samples.push_back({t, energy, focus});
    return samples;
}

void expectView(const NRect& actual, const NRect& expected) {
    EXPECT_NEAR(actual.x, expected.x, 1e-9);
    EXPECT_NEAR(actual.y, expected.y, 1e-9);
    EXPECT_NEAR(actual.w, expected.w, 1e-9);
    EXPECT_NEAR(actual.h, expected.h, 1e-9);
}

std::vector<Shot> shotsOf(const std::vector<ActivitySample>& samples, const std::optional<InputLog>& log,
                          double maxZoom = 1.7, double baseW = 1, double baseH = 1, bool autoZoom = true) {
    return Planner::shots(20, samples, log, autoZoom, baseW, baseH, maxZoom);
}

} // namespace

TEST(Shots, repeatedClicksInOnePlaceBringTheCamera) {
    // Targets from 4.5 (4 ≤ 4.5 + 0.6) on; each click holds for 1.2 s, so the target is steady from 4.5
    // to 6.5.
    const auto shots = shotsOf({}, clicksAt({click(5, 0.8, 0.5), click(6, 0.8, 0.5)}));
    ASSERT_GE(shots.size(), 2U);
    EXPECT_EQ(shots[0], (Shot{0, NRect::full()}));
    EXPECT_DOUBLE_EQ(shots[1].start, 4.5 - 0.35);
    expectView(shots[1].view, {1 - 1 / 1.7, 0.5 - 0.5 / 1.7, 1 / 1.7, 1 / 1.7});
    // The last target is at 6.5; more than 2.5 s later the camera goes home.
    ASSERT_EQ(shots.size(), 3U);
    EXPECT_EQ(shots[2], (Shot{9.25, NRect::full()}));
}

TEST(Shots, aTargetMustHoldForASecond) {
    // One click at 5.1 is seen by the steps from 4.75 to 5.5: three quarters of a second.
    EXPECT_EQ(shotsOf({}, clicksAt({click(5.1, 0.8, 0.5)})).size(), 1U);
    // One at 5 is seen from 4.5 to 5.5: a second.
    EXPECT_EQ(shotsOf({}, clicksAt({click(5, 0.8, 0.5)})).size(), 3U);
}

TEST(Shots, cutsKeepTheirDistance) {
    // Two places, two seconds apart, from early on: the first shot can't come before 2 s, the next not before
    // 4 s.
    const auto shots = shotsOf({}, clicksAt({click(1, 0.2, 0.2), click(2, 0.2, 0.2), click(3, 0.2, 0.2),
                                             click(4, 0.8, 0.8), click(5, 0.8, 0.8), click(6, 0.8, 0.8)}));
    ASSERT_GE(shots.size(), 3U);
    EXPECT_DOUBLE_EQ(shots[1].start, 2.0);
    EXPECT_GE(shots[2].start - shots[1].start, 2.0);
    EXPECT_NEAR(shots[2].view.midX(), 1 - 0.5 / 1.7, 1e-9);
}

TEST(Shots, zoomFollowsTheSizeOfTheChange) {
    struct Case {
        const char* what;
        NRect focus;
        double maxZoom;
        double expectedZoom;
    };
    const std::vector<Case> cases{
        {"a small change is limited by the largest zoom", {0.1, 0.1, 0.1, 0.1}, 1.7, 1.7},
        {"half the screen", {0.25, 0.25, 0.5, 0.5}, 1.7, 1 / 0.7},
        {"no gentle zoom", {0.2, 0.2, 0.6, 0.3}, 1.7, 1},
        {"no zoom below the least one", {0.1, 0.1, 0.1, 0.1}, 1.3, 1},
        {"all of the screen", {0, 0, 1, 1}, 1.7, 1},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const auto shots = shotsOf(change(4, 8, c.focus), std::nullopt, c.maxZoom);
        EXPECT_NEAR(shots.size() > 1 ? 1 / shots[1].view.w : 1, c.expectedZoom, 1e-9);
    }
    EXPECT_EQ(shotsOf(change(4, 8, {0.1, 0.1, 0.1, 0.1}), std::nullopt, 1.7, 1, 1, false).size(), 1U)
        << "without automatic zoom";
    EXPECT_EQ(shotsOf(change(4, 8, {0.1, 0.1, 0.1, 0.1}, 0.003), std::nullopt).size(), 1U) << "too weak";
}

TEST(Shots, weakChangesDontWidenTheTarget) {
    auto samples = change(4, 8, {0.1, 0.1, 0.1, 0.1}, 0.1);
    const auto elsewhere = change(4, 8, {0.8, 0.8, 0.1, 0.1}, 0.034);
    samples.insert(samples.end(), elsewhere.begin(), elsewhere.end());
    std::stable_sort(samples.begin(), samples.end(), [](const auto& a, const auto& b) { return a.t < b.t; });
    EXPECT_NEAR(1 / shotsOf(samples, std::nullopt)[1].view.w, 1.7, 1e-9);
    for (ActivitySample& sample : samples)
        if (sample.energy == 0.034) sample.energy = 0.035;
    EXPECT_EQ(shotsOf(samples, std::nullopt).size(), 1U);
}

TEST(Shots, aNarrowBasePansWithTheAction) {
    const double baseW = (9.0 / 16) / (16.0 / 9);
    const auto shots = shotsOf(change(4, 8, {0.5, 0.1, 0.35, 0.8}), std::nullopt, 1.7, baseW, 1);
    ASSERT_GE(shots.size(), 2U);
    expectView(shots[1].view, {0.675 - baseW / 2, 0, baseW, 1});
}

TEST(Shots, anEventWithoutAPlaceLeavesItToTheActivity) {
    InputLog log;
    for (int i = 0; i < 8; ++i)
        log.events.push_back({4 + i * 0.5, InputLog::Event::Kind::click, 0.9, std::nullopt});
    EXPECT_EQ(shotsOf({}, log).size(), 1U);
    const auto shots = shotsOf(change(4, 8, {0.1, 0.1, 0.1, 0.1}), log);
    ASSERT_GE(shots.size(), 2U);
    EXPECT_LT(shots[1].view.midX(), 0.5);
}

TEST(ZoomBlocks, becomeShotsThatRestInBetween) {
    const auto block = [](double start, double end, double x, double y, double zoom) {
        return ZoomBlock::make(start, end, x, y, zoom);
    };
    const auto shots = Planner::shots(
        {block(8, 9, 0.5, 0.5, 0.5), block(2, 4, 0, 1, 2), block(4.03125, 6, 0.5, 0.5, 4)}, 1, 1);
    ASSERT_EQ(shots.size(), 6U);
    EXPECT_EQ(shots[0], (Shot{0, NRect::full()}));
    EXPECT_EQ(shots[1], (Shot{2, {0, 0.5, 0.5, 0.5}}));
    EXPECT_EQ(shots[2], (Shot{4.03125, {0.375, 0.375, 0.25, 0.25}})); // 0.03 s: straight on to the next
    EXPECT_EQ(shots[3], (Shot{6, NRect::full()}));
    EXPECT_EQ(shots[4], (Shot{8, NRect::full()})); // a zoom below 1 counts as 1
    EXPECT_EQ(shots[5], (Shot{9, NRect::full()}));
}

TEST(ZoomBlocks, automaticOnesLeaveTheRestingViewOut) {
    const InputLog log = clicksAt({click(5, 0.8, 0.5), click(6, 0.8, 0.5)});
    const auto blocks = Planner::autoZoomBlocks(wideSource, {}, log, 16.0 / 9, 1.7);
    ASSERT_EQ(blocks.size(), 1U);
    EXPECT_DOUBLE_EQ(blocks[0].start, 4.15);
    EXPECT_DOUBLE_EQ(blocks[0].end, 9.25);
    EXPECT_NEAR(blocks[0].zoom, 1.7, 1e-9);
    EXPECT_NEAR(blocks[0].x, 1 - 0.5 / 1.7, 1e-9);
    EXPECT_NEAR(blocks[0].y, 0.5, 1e-9);
}

TEST(ProjectPlan, takesTheBlocksInForce) {
    const InputLog log = clicksAt({click(5, 0.8, 0.5), click(6, 0.8, 0.5)});
    Project project;
    const auto planned = [&] { return Planner::plan(wideSource, {}, log, project, 16.0 / 9); };

    EXPECT_EQ(planned().shots.size(), 3U);
    EXPECT_GT(planned().segments.size(), 1U);
    project.followAction = false;
    EXPECT_EQ(planned().shots.size(), 1U);
    project.skipWaiting = false;
    EXPECT_EQ(planned().segments.size(), 1U);

    // Own blocks count whatever the switches say, an empty list too.
    project.zoomBlocks = {ZoomBlock::make(1, 2, 0.5, 0.5, 2)};
    project.speedBlocks = {SpeedBlock::make(1, 2, 4, SpeedSegment::Reason::manual)};
    EXPECT_EQ(planned().shots.size(), 3U);
    EXPECT_EQ(planned().segments.size(), 3U);
    project.followAction = project.skipWaiting = true;
    project.zoomBlocks->clear();
    project.speedBlocks->clear();
    EXPECT_EQ(planned().shots.size(), 1U);
    EXPECT_EQ(planned().segments.size(), 1U);
}

TEST(ProjectPlan, cropsBeforePlanning) {
    Project project;
    project.crop = NRect{0.5, 0, 0.5, 0.5};
    const InputLog log = clicksAt({click(5, 0.75, 0.25), click(6, 0.75, 0.25)});
    const Plan plan = Planner::plan(wideSource, {}, log, project, 16.0 / 9);
    EXPECT_EQ(plan.source.width, 960);
    EXPECT_EQ(plan.source.height, 540);
    EXPECT_EQ(plan.crop, project.crop);
    ASSERT_EQ(plan.shots.size(), 3U);
    EXPECT_NEAR(plan.shots[1].view.midX(), 0.5, 1e-9);
    EXPECT_NEAR(plan.shots[1].view.midY(), 0.5, 1e-9);
}

TEST(ProjectPlan, cardsHoldTheEnds) {
    Project project;
    project.skipWaiting = false;
    project.trimStart = 1;
    project.trimEnd = 9;
    project.showTitle = project.showEnd = true;
    const SourceInfo info{1920, 1080, 10, 60, false};
    EXPECT_NEAR(Planner::plan(info, {}, std::nullopt, project, 1.78).outputDuration(), 8 - 0.04 + 2.8, 1e-9)
        << "an empty title shows no card";
    project.title = "Title";
    EXPECT_NEAR(Planner::plan(info, {}, std::nullopt, project, 1.78).outputDuration(), 8 - 0.08 + 2.2 + 2.8,
                1e-9);
}
