#include "RecordCore/Export/WorkForecast.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace RecordCore;
using Reason = SpeedSegment::Reason;

namespace {

double sum(const WorkForecast& work, double from, double to) {
    double all = 0;
    for (std::int64_t i = std::lround(from * 60); i < std::lround(to * 60); ++i)
        all += work.of(i);
    return all;
}

/// Twelve seconds; the camera moves in at 4 s and is at rest before 8 s, where time begins to fly.
Scene film() {
    Plan plan;
    plan.source = {1920, 1080, 44, 60, false};
    plan.segments = {{0, 8, 1, Reason::normal}, {8, 44, 9, Reason::idle}};
    plan.shots = {{0, {0, 0, 1, 1}}, {4, {0.25, 0.25, 0.5, 0.5}}};
    InputLog log;
    log.cursorInVideo = false;
    for (int i = 0; i < 240; ++i)
        log.cursor.push_back({i / 60.0, i < 120 ? i / 240.0 : 0.5, 0.5}); // moves until 2 s
    return {plan, Project(), log, 60};
}

} // namespace

TEST(WorkForecast, TellsWhatStandsFromWhatMoves) {
    const WorkForecast bare(film(), 60, {});
    const double still = sum(bare, 3.2, 3.8);
    EXPECT_GT(still, 0);
    EXPECT_GT(sum(bare, 1, 1.6), 5 * still) << "the pointer moves";
    EXPECT_GT(sum(bare, 4.2, 4.8), 2 * sum(bare, 1, 1.6) * 0.9) << "the camera moves";
    EXPECT_GT(sum(bare, 4.2, 4.8), 15 * still);
    EXPECT_NEAR(bare.total(), sum(bare, 0, 12), 1e-6);

    // A frame of the recording that changes in each fifteenth of a second of it, from 8 s on.
    std::vector<VideoReader::Stored> stored{{0, 1e5, true}};
    for (int i = 8 * 15; i < 44 * 15; ++i)
        stored.push_back({i / 15.0, 1e4, false});
    const WorkForecast work(film(), 60, stored);
    EXPECT_NEAR(sum(work, 3.2, 3.8), still, 1e-6);
    EXPECT_GT(sum(work, 9, 10), 5 * sum(bare, 9, 10)) << "nine times as many frames are decoded";
    EXPECT_NEAR(work.total() - sum(work, 8, 12), sum(bare, 0, 8), 20);
}
