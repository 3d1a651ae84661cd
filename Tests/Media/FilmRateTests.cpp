#include "RecordCore/Media/X264/FilmRate.h"

#include "RecordCore/Export/RateLedger.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <deque>
#include <functional>
#include <limits>
#include <set>
#include <span>
#include <vector>

using RecordCore::FrameForecast;
using RecordCore::X264::FilmRate;

namespace {

constexpr double rate = 7.5e6;

struct Outcome {
    double average = 0; ///< bits per second
    std::set<int> quantisers;
    int steps = 0; ///< times the quantiser changed
};

/// A film whose frame at `t` would take `bits(t)` at quantiser 28, half of it for every six more. The encoder
/// answers three frames later.
Outcome film(double seconds, const std::function<double(double)>& bits,
             const std::vector<FrameForecast>& forecast = {}) {
    FilmRate filmRate(rate, seconds, forecast);
    Outcome outcome;
    std::deque<std::int64_t> encoder;
    const int frames = static_cast<int>(seconds * 60);
    double sum = 0;
    int before = 0;
    for (int i = 0; i < frames; ++i) {
        const double t = i / 60.0;
        const auto kind = i % 120 == 0 ? FilmRate::Frame::key : FilmRate::Frame::change;
        const int q = filmRate.quantiser(kind, t);
        const auto size = static_cast<std::int64_t>(bits(t) * std::exp2((28 - q) / 6.0));
        sum += static_cast<double>(size);
        encoder.push_back(size);
        if (encoder.size() > 3) {
            filmRate.coded(encoder.front());
            encoder.pop_front();
        }
        if (kind == FilmRate::Frame::key) continue;
        if (before != 0 && q != before) ++outcome.steps;
        before = q;
        outcome.quantisers.insert(q);
    }
    outcome.average = sum / seconds;
    return outcome;
}

TEST(FilmRate, KeepsTheAverage) {
    const double even = rate / 60;
    struct Case {
        const char* name;
        double seconds;
        std::function<double(double)> bits;
        double tolerance;
    };
    const Case cases[] = {
        {"even", 60, [&](double) { return even; }, 0.03},
        {"twice what there is", 60, [&](double) { return 2 * even; }, 0.03},
        {"a little less", 60, [&](double) { return 0.8 * even; }, 0.03},
        {"a burst in the middle", 60, [&](double t) { return t > 25 && t < 32 ? 4 * even : 0.8 * even; },
         0.05},
        {"heavier to the end", 60, [&](double t) { return even * (0.7 + t / 60); }, 0.05},
        {"bursts", 120, [&](double t) { return std::fmod(t, 10) < 3 ? 2.5 * even : 0.4 * even; }, 0.04},
    };
    for (const Case& c : cases) {
        const Outcome outcome = film(c.seconds, c.bits);
        EXPECT_NEAR(outcome.average / rate, 1, c.tolerance) << c.name;
        EXPECT_LT(outcome.steps, c.seconds)
            << c.name << ": a quantiser that keeps changing codes stills anew";
    }
}

TEST(FilmRate, OneQuantiserWhereTheFilmIsForeseen) {
    // Nearly all of it happens in a few seconds; without a forecast too much is spent before.
    const double even = rate / 60;
    const auto bits = [&](double t) { return t > 11 && t < 16 ? 3.5 * even : 0.3 * even; };
    std::vector<FrameForecast> forecast;
    for (int i = 0; i < 24 * 60; ++i) {
        // The scale is unknown, and every frame is off by up to a third.
        const double error = 1 + std::sin(i * 0.7) / 3;
        forecast.push_back({static_cast<float>(bits(i / 60.0) / even * error), 0});
    }
    const Outcome foreseen = film(24, bits, forecast);
    EXPECT_NEAR(foreseen.average / rate, 1, 0.04);
    EXPECT_LE(*foreseen.quantisers.rbegin() - *foreseen.quantisers.begin(), 4);
    const Outcome surprised = film(24, bits);
    EXPECT_GT(*surprised.quantisers.rbegin() - *surprised.quantisers.begin(), 6);

    // A forecast of no use is as none.
    for (const float useless : {0.0F, std::numeric_limits<float>::infinity()}) {
        const std::vector<FrameForecast> none(100, {useless, 0});
        EXPECT_EQ(film(24, bits, none).quantisers, surprised.quantisers);
    }
}

TEST(FilmRate, PartsKeepTheRateTogether) {
    // Each range of 16 s is forecast too cheap or too dear by up to a quarter, and knows of the others what
    // the export lets it know.
    constexpr int seconds = 96;
    constexpr int step = 2;
    constexpr int steps = 8;
    constexpr std::size_t count = seconds / (step * steps);
    const double even = rate / 60;
    std::vector<FrameForecast> forecast;
    double sum = 0;
    for (int i = 0; i < seconds * 60; ++i) {
        forecast.push_back({i / 60 % 7 < 2 ? 3.0F : 0.4F, 0});
        sum += static_cast<double>(forecast.back().cost);
    }
    RecordCore::RateLedger ledger(std::vector<int>(count, steps));
    double spent = 0;
    int coarsest = 0;
    int finest = 100;
    for (std::size_t k = 0; k < count; ++k) {
        const int begin = static_cast<int>(k) * steps * step;
        const std::span own =
            std::span(forecast).subspan(static_cast<std::size_t>(begin) * 60, steps * step * 60);
        double share = 0;
        for (const FrameForecast& frame : own)
            share += static_cast<double>(frame.cost) / sum;
        const double error = 1 + std::sin(static_cast<double>(k) * 2) / 4;
        FilmRate filmRate(rate, seconds, own,
                          FilmRate::Part{static_cast<double>(begin), begin + steps * step + 0.0, share});
        for (int i = 0; i < steps * step * 60; ++i) {
            if (i % (step * 60) == 0) {
                if (i > 0) ledger.enter(k, filmRate.tally());
                if (k > 0) filmRate.setElsewhere(ledger.before(k, i / (step * 60)));
            }
            const int q = filmRate.quantiser(FilmRate::Frame::change, begin + i / 60.0);
            const double bits = 1.6 * even * error *
                                static_cast<double>(own[static_cast<std::size_t>(i)].cost) *
                                std::exp2((28 - q) / 6.0);
            filmRate.coded(static_cast<std::int64_t>(bits));
            spent += bits;
            if (k == 0) continue; // finds the scale first
            coarsest = std::max(coarsest, q);
            finest = std::min(finest, q);
        }
        filmRate.finish();
        ledger.enter(k, filmRate.tally());
    }
    EXPECT_NEAR(spent / seconds / rate, 1, 0.02);
    EXPECT_LE(coarsest - finest, 4);
}

TEST(FilmRate, SpendsNothingOnWhatNobodySees) {
    const Outcome outcome = film(60, [](double) { return rate / 60 / 20; });
    EXPECT_LT(outcome.average, rate / 5);
    EXPECT_GE(*outcome.quantisers.begin(), 16);
}

TEST(FilmRate, FollowsTheOffsetsOfTheForecast) {
    std::vector<FrameForecast> forecast(60, {1, 2});
    forecast[30].offset = -5;
    FilmRate filmRate(rate, 1, forecast);
    const int before = filmRate.quantiser(FilmRate::Frame::change, 29 / 60.0);
    const int finer = filmRate.quantiser(FilmRate::Frame::change, 30 / 60.0);
    const int after = filmRate.quantiser(FilmRate::Frame::change, 31 / 60.0);
    EXPECT_NEAR(before - finer, 7, 1);
    EXPECT_NEAR(after, before, 2);
}

TEST(FilmRate, StillsAndKeysAreFiner) {
    FilmRate filmRate(rate, 0);
    const int change = filmRate.quantiser(FilmRate::Frame::change, 0);
    EXPECT_LT(filmRate.quantiser(FilmRate::Frame::key, 0), change);
    EXPECT_LT(filmRate.quantiser(FilmRate::Frame::refinement, 0),
              filmRate.quantiser(FilmRate::Frame::key, 0));
}

} // namespace
