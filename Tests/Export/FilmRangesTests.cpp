#include "RecordCore/Export/FilmRanges.h"
#include "RecordCore/Export/PacketQueue.h"
#include "RecordCore/Export/RateLedger.h"
#include "RecordCore/Model/RecordingError.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <string>
#include <thread>
#include <vector>

using namespace RecordCore;

namespace {

TEST(FilmRanges, CoverTheFilmFromKeyToKey) {
    const struct {
        std::int64_t frames;
        std::size_t ranges;
    } cases[] = {{1, 1}, {960, 1}, {2280, 1}, {2281, 3}, {3600, 4}, {10478, 11}, {216'000, 225}};
    for (const auto& c : cases) {
        const std::vector<FilmRange> ranges = filmRanges(c.frames, 120, 8);
        ASSERT_EQ(ranges.size(), c.ranges) << c.frames;
        std::int64_t at = 0;
        for (const FilmRange& range : ranges) {
            EXPECT_EQ(range.begin, at);
            EXPECT_EQ(range.begin % 120, 0);
            EXPECT_GT(range.end, range.begin);
            EXPECT_LE(range.end - range.begin, c.ranges > 1 ? 11 * 120 : 19 * 120);
            at = range.end;
        }
        EXPECT_EQ(at, c.frames);
    }
}

EncodingTally bits(double count) {
    EncodingTally tally;
    tally.bits = count;
    return tally;
}

TEST(RateLedger, GoesByTheSameEntriesInWhateverOrderTheyCame) {
    // Four ranges of six steps: each leads the next by two. What is entered later must not count.
    const std::vector<int> steps{6, 6, 6, 6};
    const auto take = [](std::size_t range, int step) {
        return bits(static_cast<double>(range + 1) * 1000 + step);
    };
    RateLedger ledger(steps);
    for (std::size_t range = 0; range < 4; ++range) {
        for (int step = 0; step < 6; ++step) {
            double expected = 0;
            for (std::size_t of = 0; of < range; ++of) {
                const int counted = of == 0 ? 6 : std::min(6, step + 2 * static_cast<int>(range - of));
                expected += take(of, counted).bits;
            }
            EXPECT_EQ(ledger.before(range, step).bits, expected) << range << ", " << step;
            ledger.enter(range, take(range, step + 1));
        }
    }
}

TEST(RateLedger, WaitsForWhatCountsAndNoLongerThanToldTo) {
    RateLedger ledger({1, 3, 3});
    std::atomic<bool> stopped{false};
    ledger.enter(0, bits(1));
    std::promise<double> found;
    std::thread waiting([&] {
        found.set_value(ledger.before(2, 0).bits);
        try {
            ledger.before(2, 2); // range 1 never gets there
        } catch (const RecordingError&) {
            stopped = true;
        }
    });
    ledger.enter(1, bits(10));
    ledger.enter(1, bits(20));
    EXPECT_EQ(found.get_future().get(), 21);
    ledger.stop();
    waiting.join();
    EXPECT_TRUE(stopped);
}

TEST(PacketQueue, JoinsTheRangesInOrder) {
    PacketQueue queue(3);
    const auto put = [&](std::size_t range, std::int64_t pts) {
        const std::vector<std::uint8_t> data{static_cast<std::uint8_t>(pts)};
        queue.put(range, {data, pts, pts, 1, false});
    };
    std::vector<std::int64_t> taken;
    const auto takeAll = [&] {
        for (auto packets = queue.take(std::chrono::milliseconds(0)); !packets.empty();
             packets = queue.take(std::chrono::milliseconds(0)))
            for (const PacketQueue::Stored& packet : packets) {
                EXPECT_EQ(packet.data, std::vector<std::uint8_t>{static_cast<std::uint8_t>(packet.pts)});
                taken.push_back(packet.pts);
            }
    };
    put(1, 2);
    put(2, 4);
    put(0, 0);
    queue.close(1);
    takeAll();
    put(0, 1);
    EXPECT_EQ(taken, (std::vector<std::int64_t>{0}));
    queue.close(0);
    takeAll();
    EXPECT_FALSE(queue.ended());
    put(2, 5);
    queue.close(2);
    takeAll();
    EXPECT_EQ(taken, (std::vector<std::int64_t>{0, 1, 2, 4, 5}));
    EXPECT_TRUE(queue.ended());
    queue.stop();
    EXPECT_THROW(put(2, 6), RecordingError);
}

} // namespace
