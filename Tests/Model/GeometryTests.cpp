#include "RecordCore/Model/Clock.h"
#include "RecordCore/Model/NRect.h"
#include "RecordCore/Model/TimeRange.h"
#include "Tests/Support/Printing.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <unordered_set>

using RecordCore::NRect;
using RecordCore::TimeRange;

namespace {

void expectNear(const NRect& found, const NRect& expected) {
    for (const auto& [a, b] : {std::pair{found.x, expected.x},
                               {found.y, expected.y},
                               {found.w, expected.w},
                               {found.h, expected.h}})
        EXPECT_NEAR(a, b, 1e-12) << testing::PrintToString(found) << " is not "
                                 << testing::PrintToString(expected);
}

TEST(NRect, ContainsRectanglesWithToleranceAndPointsWithout) {
    struct Case {
        NRect inner;
        bool inside;
    };
    const double half = 0.5e-9, beyond = 2e-9;
    for (const Case& c : {
             Case{{0, 0, 1, 1}, true},
             Case{{-half, 0, 1, 1}, true},
             Case{{0, -half, 1, 1}, true},
             Case{{0, 0, 1 + half, 1}, true},
             Case{{0, 0, 1, 1 + half}, true},
             Case{{-beyond, 0, 1, 1}, false},
             Case{{0, -beyond, 1, 1}, false},
             Case{{0, 0, 1 + beyond, 1}, false},
             Case{{0, 0, 1, 1 + beyond}, false},
             Case{{-0.001, 0, 1, 1}, false},
         })
        EXPECT_EQ(NRect::full().contains(c.inner), c.inside) << testing::PrintToString(c.inner);

    const NRect r{0.25, 0.5, 0.5, 0.25};
    EXPECT_TRUE(r.contains(0.25, 0.5));
    EXPECT_TRUE(r.contains(0.75, 0.75));
    EXPECT_FALSE(r.contains(std::nextafter(0.25, 0.0), 0.5));
    EXPECT_FALSE(r.contains(std::nextafter(0.75, 1.0), 0.5));
    EXPECT_FALSE(r.contains(0.5, std::nextafter(0.5, 0.0)));
    EXPECT_FALSE(r.contains(0.5, std::nextafter(0.75, 1.0)));
    EXPECT_FALSE(r.contains(std::numeric_limits<double>::quiet_NaN(), 0.6));
}

TEST(NRect, UnionCentreAndScale) {
    expectNear(NRect{0.1, 0.6, 0.2, 0.1}.united({0.5, 0.2, 0.1, 0.2}), {0.1, 0.2, 0.5, 0.5});
    expectNear(NRect{0, 0, 1, 1}.united({0.4, 0.4, 0.1, 0.1}), NRect::full());
    expectNear(NRect::centered(0.5, 0.25, 0.2, 0.1), {0.4, 0.2, 0.2, 0.1});
    expectNear(NRect{0.4, 0.4, 0.2, 0.2}.scaled(2), {0.3, 0.3, 0.4, 0.4});
    expectNear(NRect{0.9, 0, 0.2, 0.4}.scaled(0.5), {0.95, 0.1, 0.1, 0.2});
}

TEST(NRect, ClampingMovesBeforeItCuts) {
    const struct {
        NRect from, to;
    } cases[]{
        {{0.8, -0.2, 0.5, 0.5}, {0.5, 0, 0.5, 0.5}},
        {{-3, 7, 2, 0.25}, {0, 0.75, 1, 0.25}},
        {{0.25, 0.25, 0.5, 0.5}, {0.25, 0.25, 0.5, 0.5}},
        {{0.5, 0.5, 1.5, 1.5}, NRect::full()},
        // A size is never raised, so a negative one stays and lets the corner reach past the edge.
        {{2, 0, -0.5, 0.5}, {1.5, 0, -0.5, 0.5}},
    };
    for (const auto& [from, to] : cases)
        EXPECT_EQ(from.clampedToUnit(), to) << testing::PrintToString(from);
}

TEST(TimeRange, OrdersItsEndsAndIsHalfOpen) {
    EXPECT_EQ(TimeRange::between(5, 2), (TimeRange{2, 5}));
    EXPECT_EQ(TimeRange::between(5, 2).length(), 3);
    const TimeRange range{1, 2};
    EXPECT_TRUE(range.contains(1));
    EXPECT_FALSE(range.contains(2));
    EXPECT_FALSE((TimeRange{1, 1}).contains(1));
    EXPECT_EQ((TimeRange{5, 2}).length(), -3) << "a range that is read stays as it stands";
}

TEST(TimeRange, HashAgreesWithEquality) {
    const std::hash<TimeRange> hash;
    EXPECT_EQ((TimeRange{-0.0, 1}), (TimeRange{0.0, 1}));
    EXPECT_EQ(hash({-0.0, 1}), hash({0.0, 1}));
    EXPECT_EQ(hash({1, -0.0}), hash({1, 0.0}));
    EXPECT_NE(hash({1, 2}), hash({2, 1}));

    std::unordered_set<TimeRange> set;
    for (int i = 0; i < 100; ++i)
        for (int j = 0; j < 100; ++j)
            set.insert({i * 0.25, j * 0.25});
    EXPECT_EQ(set.size(), 10000u);
    std::unordered_set<std::size_t> hashes;
    for (const TimeRange& range : set)
        hashes.insert(hash(range));
    EXPECT_GT(hashes.size(), 9900u) << "neighbouring ranges share hashes";
}

TEST(Clock, ShowsWholeMinutesAndSeconds) {
    const struct {
        double seconds;
        const char* text;
    } cases[]{
        {0, "0:00"},     {0.999, "0:00"}, {59.999, "0:59"}, {60, "1:00"},         {61.5, "1:01"},
        {3600, "60:00"}, {-0.5, "0:00"},  {-1e300, "0:00"}, {600000, "10000:00"}, {std::nan(""), "0:00"},
    };
    for (const auto& [seconds, text] : cases)
        EXPECT_EQ(RecordCore::clock(seconds), text) << seconds;
    EXPECT_FALSE(RecordCore::clock(1e300).empty());
}

} // namespace
