#include "RecordCore/Planning/Planner.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

using namespace RecordCore;
using Reason = SpeedSegment::Reason;

namespace {

/// Fifteen samples a second of the same energy over [from, to).
void addSamples(std::vector<ActivitySample>& samples, double from, double to, double energy) {
    for (double t = from; t < to; t += 1.0 / 15)
        samples.push_back({t, energy, std::nullopt});
}

std::vector<ActivitySample> still(double duration) {
    std::vector<ActivitySample> samples;
    addSamples(samples, 0, duration, 0);
    return samples;
}

std::vector<ActivitySample> busy(double duration) {
    std::vector<ActivitySample> samples;
    addSamples(samples, 0, duration, 0.2);
    return samples;
}

InputLog emptyLog(std::optional<bool> keysTracked = true) {
    InputLog log;
    log.keysTracked = keysTracked;
    return log;
}

InputLog logWithKey(double t) {
    InputLog log = emptyLog();
    log.events.push_back({t, InputLog::Event::Kind::key, std::nullopt, std::nullopt});
    return log;
}

InputLog logWithWiggle(double t, double distance) {
    InputLog log = emptyLog();
    log.cursor = {{t, 0.5, 0.5}, {t + 0.05, 0.5 + distance, 0.5}, {t + 0.1, 0.5, 0.5}};
    return log;
}

void expectSegments(const std::vector<SpeedSegment>& actual, const std::vector<SpeedSegment>& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
        EXPECT_NEAR(actual[i].start, expected[i].start, 1e-9) << "segment " << i;
        EXPECT_NEAR(actual[i].end, expected[i].end, 1e-9) << "segment " << i;
        EXPECT_NEAR(actual[i].speed, expected[i].speed, 1e-9) << "segment " << i;
        EXPECT_EQ(name(actual[i].reason), name(expected[i].reason)) << "segment " << i;
    }
}

std::vector<SpeedSegment> waitOf(double end, double speed, Reason reason) {
    return {
        {0, 0.4, 1, Reason::normal}, {0.4, end - 0.5, speed, reason}, {end - 0.5, end, 1, Reason::normal}};
}

std::vector<SpeedSegment> asRecorded(double end) {
    return {{0, end, 1, Reason::normal}};
}

} // namespace

TEST(SpeedSegments, classifiesWholeRecordings) {
    struct Case {
        const char* what;
        double duration;
        std::vector<ActivitySample> samples;
        std::optional<InputLog> log;
        double maxSpeed;
        std::vector<SpeedSegment> expected;
    };
    const std::vector<Case> cases{
        {"no length", 0, {}, std::nullopt, 40, {}},
        {"a negative length", -1, {}, std::nullopt, 40, {}},
        {"three still seconds are idle", 3, still(3), emptyLog(), 40, waitOf(3, 6, Reason::idle)},
        {"a quarter less stays", 2.75, still(2.75), emptyLog(), 40, asRecorded(2.75)},
        {"without a log stillness is enough", 3, still(3), std::nullopt, 40, waitOf(3, 6, Reason::idle)},
        {"without a log a busy screen stays", 10, busy(10), std::nullopt, 40, asRecorded(10)},
        {"the cap holds", 60, still(60), emptyLog(), 40, waitOf(60, 40, Reason::idle)},
        {"the cap is at least 2", 60, still(60), emptyLog(), 1, waitOf(60, 2, Reason::idle)},
        {"an agent's work is rounded", 10, busy(10), emptyLog(), 40, waitOf(10, 4, Reason::agentWorking)},
        {"unknown keys count as tracked", 10, busy(10), emptyLog(std::nullopt), 40,
         waitOf(10, 4, Reason::agentWorking)},
        {"without keys a busy screen stays", 10, busy(10), emptyLog(false), 40, asRecorded(10)},
        {"without keys a still screen is idle", 10, still(10), emptyLog(false), 40,
         waitOf(10, 11, Reason::idle)},
        {"a pointer that hardly moves", 10, still(10), logWithWiggle(5, 0.003), 40,
         waitOf(10, 11, Reason::idle)},
        {"no samples at all are quiet", 10, {}, emptyLog(), 40, waitOf(10, 11, Reason::idle)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        expectSegments(Planner::speedSegments(c.duration, c.samples, c.log, c.maxSpeed), c.expected);
    }
}

TEST(SpeedSegments, aMomentOfActivityKeepsItsSurroundings) {
    // The key at 10.1 lies in the windows (bin ± 0.5 s) of the bins from 9.5 to 10.75.
    const auto segments = Planner::speedSegments(20, still(20), logWithKey(10.1), 40);
    expectSegments(segments, {{0, 0.4, 1, Reason::normal},
                              {0.4, 9.0, 11, Reason::idle},
                              {9.0, 11.15, 1, Reason::normal},
                              {11.15, 19.5, 10, Reason::idle},
                              {19.5, 20, 1, Reason::normal}});
    // A wiggle just above the threshold does as much.
    EXPECT_EQ(Planner::speedSegments(20, still(20), logWithWiggle(10.1, 0.0041), 40).size(), 5U);
}

TEST(SpeedSegments, oneBusyBinMakesAWaitAnAgents) {
    std::vector<ActivitySample> samples = still(3.4);
    for (ActivitySample& sample : samples)
        if (sample.t > 1 && sample.t < 1.2) sample.energy = 0.1;
    // 3.5 seconds would do for idle, but not for an agent.
    expectSegments(Planner::speedSegments(3.5, samples, emptyLog(), 40), asRecorded(3.5));
    samples.pop_back();
    samples.push_back({4.1, 0, std::nullopt});
    expectSegments(Planner::speedSegments(4.25, samples, emptyLog(), 40),
                   waitOf(4.25, 3, Reason::agentWorking));
}

TEST(SpeedSegments, theLastBinEndsWithTheRecording) {
    const auto segments = Planner::speedSegments(10.1, still(10.1), emptyLog(), 40);
    EXPECT_DOUBLE_EQ(segments.back().end, 10.1);
    EXPECT_DOUBLE_EQ(segments[1].end, 9.6);
}

TEST(SpeedSegments, disorderDoesNotMatter) {
    std::vector<ActivitySample> samples = still(20);
    InputLog log = logWithKey(10.1);
    log.events.push_back({3.0, InputLog::Event::Kind::scroll, 0.5, 0.5});
    const auto expected = [&] {
        InputLog sorted = log;
        std::swap(sorted.events[0], sorted.events[1]);
        return Planner::speedSegments(20, samples, sorted, 40);
    }();
    std::reverse(samples.begin(), samples.end());
    expectSegments(Planner::speedSegments(20, samples, log, 40), expected);
}

TEST(SpeedSegments, agreesWithAskingTheLogForEveryBin) {
    // A long random log: the forward-only cursor must say what `userActive` says.
    unsigned seed = 7;
    const auto random = [&seed] { return (seed = seed * 1664525U + 1013904223U) / 4294967296.0; };
    InputLog log = emptyLog();
    double x = 0.5;
    for (double t = 0; t < 300; t += 1.0 / 60) {
        const bool moving = std::fmod(t, 40) < 15;
        if (moving) x += (random() - 0.5) * 0.006;
        log.cursor.push_back({t, x, 0.3});
        if (random() < 0.0008)
            log.events.push_back({t, InputLog::Event::Kind::key, std::nullopt, std::nullopt});
    }
    std::vector<bool> active;
    for (int i = 0; i < 1200; ++i)
        active.push_back(log.userActive(i * 0.25 - 0.5, i * 0.25 + 0.75, 0.004));

    // With a still screen, waits are exactly the runs of inactive bins of at least three seconds.
    std::vector<bool> normal(1200, true);
    for (const SpeedSegment& segment : Planner::speedSegments(300, still(300), log, 40)) {
        if (segment.speed == 1) continue;
        const int first = static_cast<int>(std::lround((segment.start - 0.4) * 4));
        const int last = static_cast<int>(std::lround((segment.end + 0.5) * 4));
        for (int i = first; i < last; ++i)
            normal[static_cast<std::size_t>(i)] = false;
    }
    int waiting = 0;
    for (int i = 0; i < 1200;) {
        int end = i;
        while (end < 1200 && active[static_cast<std::size_t>(end)] == active[static_cast<std::size_t>(i)])
            ++end;
        const bool wait = !active[static_cast<std::size_t>(i)] && end - i >= 12;
        for (int bin = i; bin < end; ++bin)
            EXPECT_EQ(normal[static_cast<std::size_t>(bin)], !wait) << "bin " << bin;
        waiting += wait;
        i = end;
    }
    EXPECT_GT(waiting, 3);
}

TEST(SpeedBlocks, fillClipsBlocksToTheRecordingAndToEachOther) {
    const auto block = [](double start, double end, double speed) {
        return SpeedBlock::make(start, end, speed, Reason::manual);
    };
    expectSegments(Planner::fill({}, 10), asRecorded(10));
    expectSegments(Planner::fill({}, 0), {});
    expectSegments(Planner::fill({block(4, 20, 8), block(2, 6, 0.01), block(5, 5.5, 3), block(-3, 1, 2)}, 10),
                   {{0, 1, 2, Reason::manual},
                    {1, 2, 1, Reason::normal},
                    {2, 6, 0.05, Reason::manual},
                    {6, 10, 8, Reason::manual}});
    expectSegments(Planner::fill({block(12, 14, 8), block(3, 3, 4)}, 10), asRecorded(10));
}

TEST(SpeedBlocks, removeCutsAcrossSegments) {
    const std::vector<SpeedSegment> segments{
        {0, 4, 1, Reason::normal}, {4, 8, 6, Reason::idle}, {8, 10, 1, Reason::normal}};
    expectSegments(Planner::remove({}, segments), segments);
    expectSegments(Planner::remove({{2, 3}}, asRecorded(10)),
                   {{0, 2, 1, Reason::normal}, {2, 3, 1, Reason::cut}, {3, 10, 1, Reason::normal}});
    expectSegments(Planner::remove({{0, 1}, {3, 5}, {5.5, 6}, {9, 20}}, segments), {{0, 1, 1, Reason::cut},
                                                                                    {1, 3, 1, Reason::normal},
                                                                                    {3, 4, 1, Reason::cut},
                                                                                    {4, 5, 1, Reason::cut},
                                                                                    {5, 5.5, 6, Reason::idle},
                                                                                    {5.5, 6, 1, Reason::cut},
                                                                                    {6, 8, 6, Reason::idle},
                                                                                    {8, 9, 1, Reason::normal},
                                                                                    {9, 10, 1, Reason::cut}});
    const std::vector<SpeedSegment> cutAlready{{0, 3, 4, Reason::cut}, {3, 6, 1, Reason::normal}};
    expectSegments(Planner::remove({{2, 5}}, cutAlready),
                   {{0, 3, 4, Reason::cut}, {3, 5, 1, Reason::cut}, {5, 6, 1, Reason::normal}});
    expectSegments(Planner::remove({{-1, 20}}, segments),
                   {{0, 4, 1, Reason::cut}, {4, 8, 1, Reason::cut}, {8, 10, 1, Reason::cut}});
}

TEST(SpeedBlocks, holdStretchesTheKeptEnds) {
    expectSegments(Planner::hold(asRecorded(5), true, 2.2),
                   {{0, 0.04, 0.04 / 2.2, Reason::hold}, {0.04, 5, 1, Reason::normal}});
    const std::vector<SpeedSegment> trimmed{
        {0, 1, 1, Reason::cut}, {1, 5, 2, Reason::manual}, {5, 6, 1, Reason::cut}};
    expectSegments(Planner::hold(trimmed, true, 2.2), {{0, 1, 1, Reason::cut},
                                                       {1, 1.04, 0.04 / 2.2, Reason::hold},
                                                       {1.04, 5, 2, Reason::manual},
                                                       {5, 6, 1, Reason::cut}});
    expectSegments(Planner::hold(trimmed, false, 2.8), {{0, 1, 1, Reason::cut},
                                                        {1, 4.96, 2, Reason::manual},
                                                        {4.96, 5, 0.04 / 2.8, Reason::hold},
                                                        {5, 6, 1, Reason::cut}});
    for (const auto& unchanged :
         {std::vector<SpeedSegment>{}, std::vector<SpeedSegment>{{0, 3, 1, Reason::cut}},
          std::vector<SpeedSegment>{{0, 0.078125, 1, Reason::normal}}}) {
        expectSegments(Planner::hold(unchanged, true, 2.2), unchanged);
        expectSegments(Planner::hold(unchanged, false, 2.2), unchanged);
    }
}
