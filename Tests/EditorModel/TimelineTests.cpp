#include "OmbrelRecord/EditorModel/TimelineEditing.h"
#include "OmbrelRecord/EditorModel/TimelineScale.h"

#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using namespace OmbrelRecord;
using namespace OmbrelRecord::TimelineEditing;
using RecordCore::TimeRange;

TEST(TimelineScaleTest, TimesAndPixelsMapOntoEachOther) {
    const TimelineScale whole = TimelineScale::fitting(3600, 1228);
    EXPECT_TRUE(whole.fits());
    EXPECT_DOUBLE_EQ(whole.x(0), 14);
    EXPECT_DOUBLE_EQ(whole.x(3600), 1214);
    for (const double at : {0.0, 14.0, 333.0, 1214.0})
        EXPECT_NEAR(whole.x(whole.time(at)), at, 1e-9);
    EXPECT_EQ(whole.timeInside(-50), 0);
    EXPECT_EQ(whole.timeInside(5000), 3600);
}

TEST(TimelineScaleTest, WhatIsUnderThePointerStaysThereWhileMagnifying) {
    const TimelineScale whole = TimelineScale::fitting(600, 1028);
    const double at = 400;
    const double held = whole.time(at);
    TimelineScale near = whole;
    for (int i = 0; i < 10; ++i)
        near = near.magnified(1.25, at);
    EXPECT_NEAR(near.time(at), held, 1e-9);
    EXPECT_NEAR(near.secondsPerPixel, whole.secondsPerPixel / std::pow(1.25, 10), 1e-12);
    // Never beyond the ends, never closer than a frame can be seen, never smaller than whole.
    EXPECT_EQ(whole.magnified(4, 0).start, 0);
    EXPECT_NEAR(whole.magnified(4, 5000).start + whole.magnified(4, 5000).shown(), 600, 1e-9);
    EXPECT_EQ(whole.magnified(1e9, at).secondsPerPixel, whole.finest());
    EXPECT_EQ(near.magnified(1e-9, at), whole);
    EXPECT_EQ(near.magnified(0, at), near);
    EXPECT_EQ(near.magnified(std::nan(""), at), near);
    EXPECT_EQ(near.scrolled(-1e9).start, 0);
    EXPECT_TRUE(whole.resized(640).fits());
    EXPECT_DOUBLE_EQ(near.resized(640).secondsPerPixel, near.secondsPerPixel);
}

TEST(TimelineScaleTest, PagesTurnToShowATime) {
    const TimelineScale near = TimelineScale::fitting(600, 1028).magnified(10, 14); // shows 0…60
    EXPECT_EQ(near.revealing(30), near);
    EXPECT_EQ(near.revealing(60), near);
    const TimelineScale next = near.revealing(61);
    EXPECT_GT(next.start, 50);
    EXPECT_LT(next.start, 61) << "near the left edge";
    EXPECT_NE(near.revealing(59.5, 0.02), near) << "a little ahead";
    const TimelineScale back = next.revealing(5);
    EXPECT_LE(back.start, 5);
    const TimelineScale part = near.showing(100, 110);
    EXPECT_LT(part.start, 100);
    EXPECT_GT(part.start + part.shown(), 110);
    EXPECT_LT(part.shown(), 12);
    const TimelineScale nothing = TimelineScale::fitting(0, 0);
    EXPECT_TRUE(std::isfinite(nothing.x(0)) && std::isfinite(nothing.time(10)));
}

TEST(TimelineScaleTest, RulersCarryRoundTimesWithRoomForThem) {
    for (const double duration : {0.5, 7.0, 42.0, 600.0, 3600.0, 90000.0})
        for (const double factor : {1.0, 3.0, 20.0, 400.0}) {
            const TimelineScale scale = TimelineScale::fitting(duration, 1200).magnified(factor, 600);
            const auto ticks = scale.ticks(0, 1200);
            double last = -1e9;
            for (const auto& tick : ticks) {
                EXPECT_GE(tick.time, 0);
                EXPECT_LE(tick.time, duration + 1e-9);
                if (!tick.major) continue;
                const double at = scale.x(tick.time);
                EXPECT_GE(at - last, 84 - 1e-6) << duration << " " << factor;
                last = at;
                const double labels = tick.time / scale.labelStep();
                EXPECT_NEAR(labels, std::round(labels), 1e-6);
            }
            EXPECT_LT(ticks.size(), 400u);
        }
}

TEST(TimelineScaleTest, TimesReadAsPeopleWriteThem) {
    const struct {
        double seconds, step;
        const char* text;
    } cases[] = {{0, 1, "0:00"},          {7.99, 1, "0:07"},      {190, 1, "3:10"},
                 {3723, 1, "1:02:03"},    {59.97, 0.1, "1:00.0"}, {1.25, 0.05, "0:01.25"},
                 {1.25, 0.25, "0:01.25"}, {-3, 1, "0:00"},        {0.3 + 0.6, 0.1, "0:00.9"}};
    for (const auto& [seconds, step, text] : cases)
        EXPECT_EQ(timeText(seconds, step), QString::fromUtf8(text));
    EXPECT_EQ(speedText(40), QStringLiteral("40×"));
    EXPECT_EQ(speedText(1.5), QStringLiteral("1.5×"));
    EXPECT_EQ(speedText(0.25), QStringLiteral("0.25×"));
    EXPECT_EQ(speedText(123), QStringLiteral("123×"));
}

TEST(TimelineEditingTest, AHandTakesHoldOfWhatItSees) {
    const TimelineScale scale{100, 1028, 0, 0.1}; // ten pixels a second, from x = 14 on
    const std::vector<TimeRange> blocks{{10, 20}, {20, 30}, {40, 40.5}, {50, 50.1}};
    const auto at = [&](double time, std::optional<std::size_t> preferred = std::nullopt) {
        return blockAt(blocks, scale, scale.x(time), preferred);
    };
    const struct {
        double time;
        std::optional<Held> held;
    } cases[] = {
        {9.5, std::nullopt},           {9.7, Held{0, Grip::start}}, // a little beyond its edge
        {10.2, Held{0, Grip::start}},  {15, Held{0, Grip::body}},
        {19.8, Held{0, Grip::end}},    {20.2, Held{1, Grip::start}}, // where two touch the side decides
        {30.3, Held{1, Grip::end}},    {35, std::nullopt},
        {40.25, Held{2, Grip::body}},                               // five pixels wide, yet it can be moved
        {40.02, Held{2, Grip::start}}, {50.2, Held{3, Grip::body}}, // drawn wider than it is
    };
    for (const auto& [time, held] : cases)
        EXPECT_EQ(at(time), held) << time;
    EXPECT_EQ(at(19.8, 1), (Held{1, Grip::start})) << "the handles of what is selected come first";
    EXPECT_EQ(blockAt({}, scale, 100), std::nullopt);
}

TEST(TimelineEditingTest, EdgesSnapToTheNearestWithinReach) {
    const SnapPoints points({5, 1, 3, 3.2, 1});
    EXPECT_EQ(points.near(3.15, 0.5), 3.2);
    EXPECT_EQ(points.near(3.05, 0.5), 3.0);
    EXPECT_EQ(points.near(4, 0.5), std::nullopt);
    EXPECT_EQ(points.near(5.5, 0.5), 5.0);
    EXPECT_EQ(points.near(0, 1), 1.0);
    EXPECT_EQ(points.near(3.001, 0), std::nullopt) << "no snapping while it is held off";
    EXPECT_EQ(SnapPoints().near(3, 10), std::nullopt);
}

TEST(TimelineEditingTest, DragsSnapAndStayWithinTheirLimits) {
    const SnapPoints points({10, 20, 33});
    const Limits limits{8, 30, 0.5};
    const TimeRange block{12, 16};
    const struct {
        Grip grip;
        double delta;
        Snapped result;
    } cases[] = {
        {Grip::body, 1, {{13, 17}, std::nullopt}},
        {Grip::body, -1.8, {{10, 14}, 10}}, // its start snaps
        {Grip::body, 4.1, {{16, 20}, 20}},  // its end snaps
        {Grip::body, -50, {{8, 12}, std::nullopt}},
        {Grip::body, 50, {{26, 30}, std::nullopt}},
        {Grip::start, -1.9, {{10, 16}, 10}},
        {Grip::start, 50, {{15.5, 16}, std::nullopt}},
        {Grip::start, -50, {{8, 16}, std::nullopt}},
        {Grip::end, 3.8, {{12, 20}, 20}},
        {Grip::end, 16.9, {{12, 30}, std::nullopt}}, // a point beyond the limit is no hint
        {Grip::end, -50, {{12, 12.5}, std::nullopt}},
    };
    for (const auto& [grip, delta, result] : cases) {
        const Snapped moved = dragged(block, grip, delta, limits, points, 0.25);
        EXPECT_NEAR(moved.range.start, result.range.start, 1e-9) << delta;
        EXPECT_NEAR(moved.range.end, result.range.end, 1e-9) << delta;
        EXPECT_EQ(moved.at, result.at) << delta;
    }
    const std::vector<TimeRange> blocks{{0, 5}, {6, 7}, {9, 10}};
    EXPECT_EQ(limitsOf(blocks, 1, 60, 0.2).from, 5);
    EXPECT_EQ(limitsOf(blocks, 1, 60, 0.2).to, 9);
    EXPECT_EQ(limitsOf(blocks, 2, 60, 0.2).to, 60);
    // A range is drawn in either direction.
    EXPECT_EQ(drawn(15, 9.9, 100, points, 0.25), (Snapped{{10, 15}, 10}));
    EXPECT_EQ(drawn(95, 300, 100, points, 0.25), (Snapped{{95, 100}, std::nullopt}));
}

} // namespace
