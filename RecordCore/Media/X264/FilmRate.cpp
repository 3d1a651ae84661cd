#include "RecordCore/Media/X264/FilmRate.h"

#include <algorithm>
#include <cmath>

namespace RecordCore::X264 {

namespace {

constexpr int firstBase = 28;
/// What moves is seen no better with a finer quantiser than this; what stands gets finer ones below.
constexpr int finest = 25;
constexpr int coarsest = 38;
/// Frames that others are predicted from for long are worth more. Measured on screen recordings: nearly one
/// quantiser for all that moves, finer ones for keys and stills, is the most quality for the bits.
constexpr int keyOffset = -5;
constexpr int refinementOffset = -8;
/// What the first guess weighs beside what was measured, in seconds of film.
constexpr double guessed = 10;
constexpr double guessedRecently = 2;
/// How long what just happened counts, in seconds of film.
constexpr double memory = 6;
/// Within what time too much or too little spent is made up for, in seconds of film.
constexpr double shortestPlan = 6;
constexpr double longestPlan = 60;
/// Overspending is paid back at not less than this share of the rate.
constexpr double leastShare = 0.5;
/// Steps of the quantiser that are not taken.
constexpr double tolerance = 0.75;

/// Six steps of the quantiser double the step size (H.264, 8.5.9); bits go about inversely with it.
double stepSize(double quantiser) {
    return std::exp2(quantiser / 6);
}

} // namespace

FilmRate::FilmRate(double bitsPerSecond, double seconds) :
    rate(std::max(bitsPerSecond, 1.0)), length(seconds), current(firstBase) {}

/// The quantiser at which the average is kept, if the film goes on as it did.
double FilmRate::wanted() const {
    const double guess = rate * stepSize(firstBase);
    const double all = (cost + guess * guessed) / (now + guessed);
    const double recent = (recentCost + guess * guessedRecently) / (recentTime + guessedRecently);
    const double ahead = length > 0 ? std::clamp(length - now, shortestPlan, longestPlan) : longestPlan;
    const double left = std::max(rate * (now + ahead) - spent, leastShare * rate * ahead);
    return 6 * std::log2((all + recent) / 2 * ahead / left);
}

int FilmRate::quantiser(Frame frame, double seconds) {
    const double passed = std::max(seconds - now, 0.0);
    const double kept = std::exp(-passed / memory);
    recentCost *= kept;
    recentTime = recentTime * kept + passed;
    now += passed;
    const double difference = std::clamp(wanted(), double{finest}, double{coarsest}) - current;
    if (std::abs(difference) > tolerance) current += difference > 0 ? 1 : -1;
    return current + (frame == Frame::key ? keyOffset : frame == Frame::refinement ? refinementOffset : 0);
}

void FilmRate::coded(std::int64_t bits, int base) {
    const double size = static_cast<double>(bits);
    spent += size;
    cost += size * stepSize(base);
    recentCost += size * stepSize(base);
}

} // namespace RecordCore::X264
