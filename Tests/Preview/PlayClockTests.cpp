#include "RecordCore/Preview/PlayClock.h"

#include <gtest/gtest.h>

#include <cmath>

using RecordCore::PlayClock;

namespace {

class PlayClockTest : public testing::Test {
protected:
    /// The film's time at the end of a stretch in which it was looked at a hundred times a second.
    double run(double seconds) {
        double time = clock.at(now);
        for (const double end = now + seconds; now < end - 1e-9;) {
            now += 0.01;
            time = clock.at(now);
            EXPECT_GE(time, last) << "time went back";
            last = time;
        }
        return time;
    }
    PlayClock clock;
    double now = 1000;
    double last = 0;
    std::optional<double> sound = 0;
};

} // namespace

TEST_F(PlayClockTest, WithoutSoundItIsTheSystems) {
    clock.start(5, now);
    EXPECT_NEAR(run(3), 8, 1e-6);
    clock.stop();
    EXPECT_NEAR(run(3), 8, 1e-6);
}

TEST_F(PlayClockTest, WaitsForTheFirstSoundAndFollowsIt) {
    clock.start(5, now, [this] { return sound; });
    EXPECT_EQ(run(0.3), 5);
    // A device that runs half a percent fast, and tells it with 4 ms of jitter.
    const double begun = now;
    int n = 0;
    for (int i = 0; i < 2000; ++i) {
        now += 0.01;
        const double heard = (now - begun) * 1.005;
        sound = heard + 0.004 * std::sin(++n * 2.1);
        const double time = clock.at(now);
        EXPECT_GE(time, last);
        last = time;
        if (i > 100) {
            EXPECT_NEAR(time, 5 + heard, 0.003);
        }
    }
    EXPECT_TRUE(clock.followsSound());
}

TEST_F(PlayClockTest, GoesOnWithoutASoundThatFails) {
    for (const bool vanishes : {true, false}) {
        last = 0;
        sound = 0;
        clock.start(0, now, [this] { return sound; });
        const double begun = now;
        for (int i = 0; i < 100; ++i) {
            now += 0.01;
            sound = now - begun;
            last = clock.at(now);
        }
        if (vanishes) sound.reset(); // else it stands still
        EXPECT_NEAR(run(4), 5, vanishes ? 0.01 : 0.6);
        EXPECT_FALSE(clock.followsSound());
        const double before = last;
        sound = 100;
        EXPECT_NEAR(run(1), before + 1, 1e-6) << "what came back late is not listened to";
    }
    // And without one that never begins.
    last = 0;
    sound = 0;
    clock.start(2, now, [this] { return sound; });
    EXPECT_NEAR(run(3), 4, 0.05);
}
