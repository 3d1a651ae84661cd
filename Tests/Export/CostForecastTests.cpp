#include "RecordCore/Export/CostForecast.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

using namespace RecordCore;
using Reason = SpeedSegment::Reason;

namespace {

double sum(const std::vector<FrameForecast>& costs, double from, double to) {
    return std::accumulate(costs.begin() + static_cast<std::ptrdiff_t>(from * 60),
                           costs.begin() + static_cast<std::ptrdiff_t>(to * 60), 0.0,
                           [](double all, const FrameForecast& frame) { return all + frame.cost; });
}

/// Twelve seconds at normal speed; the camera moves in at 4 s.
Scene movingAtFour() {
    Plan plan;
    plan.source.duration = 12;
    plan.segments = {{0, 12, 1, Reason::normal}};
    plan.shots = {{0, {0, 0, 1, 1}}, {4, {0.25, 0.25, 0.5, 0.5}}};
    return {plan, Project(), std::nullopt, 60};
}

TEST(CostForecast, FollowsTheCameraAndWhatTheRecordingHolds) {
    const Scene scene = movingAtFour();
    // The screen changes between 8 and 9 s, by ever more frames as large as a key frame.
    std::vector<VideoReader::Stored> stored;
    for (double t = 0; t < 12; t += 2)
        stored.push_back({t, 1e6, true});
    for (double t = 8.05; t < 9; t += 0.05)
        stored.push_back({t, 4e5, false});
    std::sort(stored.begin(), stored.end(), [](const auto& a, const auto& b) { return a.time < b.time; });

    const std::vector<FrameForecast> costs = costForecast(scene, 60, stored, 120);
    ASSERT_EQ(costs.size(), 720U);
    const double still = sum(costs, 1, 2);
    EXPECT_GT(still, 0);
    EXPECT_GT(sum(costs, 4.5, 5.5), 20 * still);
    EXPECT_GT(sum(costs, 8.02, 9.02), 20 * still);
    EXPECT_NEAR(sum(costs, 11, 12), still, still * 0.01);
    // Key frames of the film stand out of what is still.
    EXPECT_GT(costs[120].cost, 100 * costs[119].cost);

    // What moves fast is coarser than what moves slowly, and that than what stands.
    EXPECT_GT(costs[4 * 60 + 15].offset, costs[350].offset);
    EXPECT_GT(costs[350].offset, costs[2 * 60 + 30].offset);

    // A busy screen is heavier to move over.
    for (VideoReader::Stored& frame : stored)
        if (frame.key && frame.time >= 4) frame.bits = 3e6;
    EXPECT_GT(sum(costForecast(scene, 60, stored, 120), 4.5, 5.5), 2 * sum(costs, 4.5, 5.5));
}

TEST(CostForecast, KnowsTheCameraWithoutAnIndex) {
    const std::vector<FrameForecast> costs = costForecast(movingAtFour(), 60, {}, 120);
    EXPECT_GT(sum(costs, 4.5, 5.5), 20 * sum(costs, 2.5, 3.5));
}

TEST(CostForecast, AJumpCostsNoMoreThanAKeyFrame) {
    Plan plan;
    plan.source.duration = 100;
    plan.segments = {{0, 1, 1, Reason::normal}, {1, 99, 1, Reason::cut}, {99, 100, 1, Reason::normal}};
    plan.shots = {{0, {0, 0, 1, 1}}};
    const Scene scene(plan, Project(), std::nullopt, 60);
    std::vector<VideoReader::Stored> stored{{0, 1e6, true}};
    for (int i = 1; i < 1000; ++i)
        stored.push_back({i * 0.1, 3e5, false});
    const std::vector<FrameForecast> costs = costForecast(scene, 60, stored, 1000);
    ASSERT_EQ(costs.size(), 120U);
    EXPECT_LE(costs[60].cost, costs[0].cost * 1.01F);
}

} // namespace
