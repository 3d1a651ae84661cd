#include "RecordCore/Planning/Plan.h"
#include "RecordCore/Planning/TimeMap.h"

#include <gtest/gtest.h>

#include <random>

using namespace RecordCore;
using Reason = SpeedSegment::Reason;

namespace {

Plan planOf(std::vector<SpeedSegment> segments) {
    Plan plan;
    plan.segments = std::move(segments);
    return plan;
}

} // namespace

TEST(Plan, mapsTimesThroughSpeedsAndCuts) {
    const Plan fast =
        planOf({{0, 2, 1, Reason::normal}, {2, 10, 4, Reason::idle}, {10, 12, 1, Reason::normal}});
    EXPECT_DOUBLE_EQ(fast.outputDuration(), 6);
    EXPECT_DOUBLE_EQ(fast.sourceTime(3), 6);
    EXPECT_DOUBLE_EQ(fast.outputTime(6), 3);
    EXPECT_DOUBLE_EQ(fast.sourceTime(100), 12);
    EXPECT_EQ(fast.segmentAt(2)->speed, 4);
    EXPECT_EQ(fast.segmentAt(12)->start, 10);

    const Plan cut = planOf({{0, 2, 1, Reason::normal}, {2, 3, 1, Reason::cut}, {3, 5, 1, Reason::normal}});
    EXPECT_DOUBLE_EQ(cut.outputDuration(), 4);
    EXPECT_DOUBLE_EQ(cut.outputTime(2.5), 2);
    EXPECT_DOUBLE_EQ(cut.outputTime(3), 2);
    EXPECT_DOUBLE_EQ(cut.sourceTime(2), 3);
    EXPECT_EQ(cut.segmentAt(2.5)->start, 3) << "cut: the last segment";
    EXPECT_TRUE(cut.segmentHolding(2.5)->isCut());
    EXPECT_EQ(cut.segmentHolding(9)->start, 3);

    EXPECT_DOUBLE_EQ(planOf({{0, 0.04, 0.04 / 2.2, Reason::hold}}).outputDuration(), 2.2);

    const Plan none;
    EXPECT_EQ(none.outputDuration(), 0);
    EXPECT_EQ(none.outputTime(3), 0);
    EXPECT_EQ(none.sourceTime(3), 0);
    EXPECT_EQ(none.segmentAt(0), nullptr);
    EXPECT_EQ(none.viewAt(0), NRect::full());
}

TEST(TimeMap, answersAsThePlanDoes) {
    std::mt19937 random(11);
    std::uniform_real_distribution<double> share(0, 1);
    for (int round = 0; round < 200; ++round) {
        Plan plan;
        double end = 0;
        const int count = static_cast<int>(share(random) * 12);
        for (int i = 0; i < count; ++i) {
            const double start = end;
            // Whole numbers make questions hit boundaries exactly.
            end += std::ceil(share(random) * 4) * 0.5;
            const bool cut = share(random) < 0.3;
            plan.segments.push_back(
                {start, end, cut ? 1 : std::ceil(share(random) * 8) / 2, cut ? Reason::cut : Reason::manual});
        }
        double shotStart = 0;
        for (int i = 0; i < 5; ++i) {
            plan.shots.push_back({shotStart, {share(random), 0, 0.5, 0.5}});
            shotStart += share(random) * 6 - 1; // now and then out of order
        }
        const TimeMap map(plan);
        EXPECT_EQ(map.outputDuration(), plan.outputDuration());
        for (double t = -1; t < end + 1; t += 0.125) {
            EXPECT_EQ(map.outputTime(t), plan.outputTime(t)) << t;
            EXPECT_EQ(map.sourceTime(t), plan.sourceTime(t)) << t;
            EXPECT_EQ(map.viewAt(t), plan.viewAt(t)) << t;
            const auto same = [](const SpeedSegment* a, const SpeedSegment* b) {
                return a && b ? *a == *b : a == b;
            };
            EXPECT_TRUE(same(map.segmentAt(t), plan.segmentAt(t))) << t;
            EXPECT_TRUE(same(map.segmentHolding(t), plan.segmentHolding(t))) << t;
        }
    }
}
