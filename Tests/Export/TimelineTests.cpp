#include "RecordCore/Export/Timeline.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace RecordCore;
using Reason = SpeedSegment::Reason;

namespace {

// All numbers are exact in binary, so that results can be compared exactly.
Plan plan(std::vector<SpeedSegment> segments, double duration) {
    Plan result;
    result.source.duration = duration;
    result.segments = std::move(segments);
    return result;
}

TEST(Timeline, LaysSegmentsWithoutCutsOneAfterTheOther) {
    const Plan edited = plan({{0, 2, 1, Reason::normal},
                              {2, 10, 4, Reason::idle},
                              {10, 11, 1, Reason::cut},
                              {11, 12, 0.5, Reason::manual},
                              {12, 16, 1, Reason::normal}},
                             15.5);
    const Composition composition = Timeline::composition(edited);
    const std::vector<Composition::Piece> expected{{{0, 2}, {0, 2}, 1},
                                                   {{2, 10}, {2, 4}, 4},
                                                   {{11, 12}, {4, 6}, 0.5},
                                                   {{12, 15.5}, {6, 10}, 1}}; // the source ends early
    EXPECT_EQ(composition.screen, expected);
    EXPECT_EQ(composition.duration, edited.outputDuration());
    EXPECT_TRUE(composition.camera.empty());
    EXPECT_EQ(Timeline::composition(plan({}, 0)), Composition());
}

TEST(Timeline, LeavesOutWhatIsTooShortAndKeepsThePlaceOfTheRest) {
    const double tiny = 1.0 / 1024;  // seconds
    const double enough = 1.0 / 512; // just above 0.001 s
    const Composition composition = Timeline::composition(plan({{0, tiny, 1, Reason::normal},
                                                                {tiny, tiny + enough, 1, Reason::normal},
                                                                {1, 1, 1, Reason::normal},
                                                                {1, 2, 1, Reason::normal}},
                                                               2));
    ASSERT_EQ(composition.screen.size(), 2U);
    EXPECT_EQ(composition.screen[0].output, (TimeRange{tiny, tiny + enough}));
    EXPECT_EQ(composition.screen[1].output, (TimeRange{tiny + enough, tiny + enough + 1}));
}

TEST(Timeline, CameraKeepsInStepWhereItHasFootage) {
    const Plan edited =
        plan({{0, 2, 1, Reason::normal}, {2, 10, 4, Reason::idle}, {10, 12, 1, Reason::normal}}, 12);
    // The camera began half a second late and stopped at 9.5 s of the screen's time.
    const Composition composition = Timeline::composition(edited, Timeline::CameraFootage{9, 0.5});
    const std::vector<Composition::Piece> expected{{{0, 1.5}, {0.5, 2}, 1}, {{1.5, 9}, {2, 3.875}, 4}};
    EXPECT_EQ(composition.camera, expected);
    EXPECT_EQ(composition.cameraTime(0.25), std::nullopt);
    EXPECT_EQ(composition.cameraTime(0.5), 0.0);
    EXPECT_EQ(composition.cameraTime(3), 5.5);
    EXPECT_EQ(composition.cameraTime(3.875), std::nullopt);
    EXPECT_EQ(composition.cameraTime(5), std::nullopt);

    // It began early: its first second is never shown.
    const Composition early = Timeline::composition(edited, Timeline::CameraFootage{20, -1});
    EXPECT_EQ(early.cameraTime(0), 1.0);
    EXPECT_EQ(early.cameraTime(5), 12.0);

    // A part below 0.02 s is not inserted, one just above is.
    const double below = 1.0 / 64;
    const double above = 1.0 / 32;
    EXPECT_TRUE(Timeline::composition(edited, Timeline::CameraFootage{below, 0}).camera.empty());
    EXPECT_EQ(Timeline::composition(edited, Timeline::CameraFootage{above, 0}).camera.size(), 1U);
    // Nor one that is long enough but would last a millisecond or less.
    EXPECT_TRUE(Timeline::composition(plan({{0, 1, 1024, Reason::manual}}, 1), Timeline::CameraFootage{1, 0})
                    .camera.empty());
}

} // namespace
