#include "RecordCore/Media/SoundReader.h"
#include "RecordCore/Preview/SoundFeed.h"
#include "Tests/Support/RealMedia.h"

#include <gtest/gtest.h>

#include <cmath>
#include <thread>

using namespace RecordCore;

namespace {

/// Every sample tells where it stands.
class Ramp final : public SoundReader {
public:
    std::int64_t end() const override { return 60 * soundRate; }
    void read(std::int64_t position, std::span<float> out) override {
        for (std::size_t i = 0; i < out.size(); ++i)
            out[i] = std::sin(static_cast<float>(position + static_cast<std::int64_t>(i / 2)) * 0.01F);
    }
};

Composition composition(std::vector<SpeedSegment> segments) {
    Plan plan;
    plan.source.duration = 60;
    plan.segments = std::move(segments);
    return Timeline::composition(plan);
}

std::unique_ptr<RetimedSound> sound(const Composition& film) {
    std::vector<std::unique_ptr<SoundReader>> tracks;
    tracks.push_back(std::make_unique<Ramp>());
    return std::make_unique<RetimedSound>(film, std::move(tracks), RealMedia().makeTimeStretcher(), 1);
}

/// So much sound, taken no faster than it is made.
std::vector<float> taken(SoundFeed& feed, double seconds) {
    std::vector<float> all;
    std::vector<float> part(480 * 2);
    while (static_cast<double>(all.size()) < seconds * soundRate * 2) {
        while (!feed.ready())
            std::this_thread::yield();
        feed.take(part);
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

std::vector<float> expected(const Composition& film, double from, std::size_t count) {
    std::vector<float> all(count);
    sound(film)->read(std::llround(from * soundRate), all);
    return all;
}

} // namespace

TEST(SoundFeed, GivesTheFilmsSoundFromAnywhere) {
    using Reason = SpeedSegment::Reason;
    const Composition first = composition({{0, 4, 1, Reason::normal},
                                           {4, 10, 2, Reason::manual},
                                           {10, 40, 1, Reason::cut},
                                           {40, 60, 20, Reason::idle}});
    const Composition second = composition({{0, 30, 1, Reason::cut}, {30, 60, 1, Reason::normal}});
    SoundFeed feed([&] { return sound(first); }, [] {});
    for (const double from : {3.5, 0.0, 5.2, 6.9}) {
        feed.play(std::llround(from * soundRate));
        const std::vector<float> heard = taken(feed, 3);
        EXPECT_TRUE(heard == expected(first, from, heard.size())) << "from " << from;
    }
    feed.retime(second);
    feed.play(soundRate);
    const std::vector<float> heard = taken(feed, 1);
    EXPECT_TRUE(heard == expected(second, 1, heard.size()));
}

TEST(SoundFeed, IsSilentAndKeepsTimeWhenItIsLate) {
    const Composition film = composition({{0, 60, 1, SpeedSegment::Reason::normal}});
    SoundFeed feed([&] { return sound(film); }, [] {});
    feed.play(0);
    // More than it ever keeps, at once: the end of it cannot have been made.
    std::vector<float> much(static_cast<std::size_t>(10 * soundRate) * 2, 1.0F);
    feed.take(much);
    for (std::size_t i = much.size() - 1000; i < much.size(); ++i)
        ASSERT_EQ(much[i], 0);
    const std::vector<float> heard = taken(feed, 0.5);
    EXPECT_TRUE(heard == expected(film, 10, heard.size())) << "not what should have been heard before";

    SoundFeed none([]() -> std::unique_ptr<RetimedSound> { return nullptr; }, [] {});
    none.play(0);
    EXPECT_EQ(taken(none, 0.1), std::vector<float>(4800 * 2));
}
