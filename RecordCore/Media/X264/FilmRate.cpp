#include "RecordCore/Media/X264/FilmRate.h"

#include <algorithm>
#include <cmath>

namespace RecordCore::X264 {

namespace {

constexpr int firstBase = 28;
/// With a finer quantiser than this nothing is seen any better: the film then stays below its rate.
constexpr int finest = 18;
constexpr int coarsest = 38;
constexpr int finestOfAll = 12;
/// Frames that others are predicted from for long are worth more. Measured on screen recordings: nearly one
/// quantiser for all that moves, finer ones for keys and stills, is the most quality for the bits.
constexpr int keyOffset = -11;
constexpr int refinementOffset = -12;
constexpr int finestOffset = -6;
constexpr int coarsestOffset = 3;
/// What the first guess weighs beside what was measured, in seconds of an even film; with a forecast less,
/// since the first key frame already tells its scale.
constexpr double guessed = 10;
constexpr double guessedOfForecast = 1;
constexpr double guessedRecently = 2;
/// How much of what just happened counts, in seconds of an even film.
constexpr double memory = 6;
/// Within what time too much or too little spent is made up for, in seconds of film.
constexpr double shortestPlan = 6;
constexpr double longestPlan = 60;
/// With a forecast the plan goes to the end and this share of the film beyond: what it is off in the last
/// moments is not chased after.
constexpr double beyondTheEnd = 0.07;
/// Overspending is paid back at not less than this share of the rate.
constexpr double leastShare = 0.5;
/// Steps of the quantiser that are not taken.
constexpr double tolerance = 0.75;

/// Six steps of the quantiser double the step size (H.264, 8.5.9); bits go about inversely with it.
double stepSize(double quantiser) {
    return std::exp2(quantiser / 6);
}

} // namespace

FilmRate::FilmRate(double bitsPerSecond, double seconds, std::span<const FrameForecast> forecast,
                   const std::optional<Part>& ofFilm) :
    rate(std::max(bitsPerSecond, 1.0)),
    length(seconds), part(ofFilm.value_or(Part{0, seconds, 1})), now(part.begin), current(firstBase) {
    if (length <= 0 || forecast.empty()) return;
    work.reserve(forecast.size() + 1);
    work.push_back(0);
    for (const FrameForecast& frame : forecast)
        work.push_back(work.back() + std::max(0.0, static_cast<double>(frame.cost)));
    const double scale = length * part.share / work.back();
    if (!(work.back() > 0) || !std::isfinite(work.back()) || !std::isfinite(scale)) {
        work.clear();
        return;
    }
    for (double& sum : work)
        sum *= scale;
    offsets.reserve(forecast.size());
    for (const FrameForecast& frame : forecast)
        offsets.push_back(std::clamp(frame.offset, finestOffset, coarsestOffset));
}

std::size_t FilmRate::frameAt(double seconds) const {
    const double frames = static_cast<double>(offsets.size());
    const double passed = (seconds - part.begin) / (part.end - part.begin);
    return static_cast<std::size_t>(std::min(std::round(std::clamp(passed, 0.0, 1.0) * frames), frames - 1));
}

/// The forecast for the part up to and with the frame shown at `seconds`.
double FilmRate::workUntil(double seconds) const {
    return work.empty() ? seconds - part.begin : work[frameAt(seconds) + 1];
}

/// The quantiser at which the average is kept, if the film goes on as forecast. What is not known of other
/// parts counts as what is yet to come: they, too, will take a quantiser like this.
double FilmRate::wanted() const {
    const double guess = rate * stepSize(firstBase);
    const double weight = work.empty() ? guessed : guessedOfForecast;
    const double all = (elsewhere.cost + cost + guess * weight) / (elsewhere.coded + done + weight);
    const double bits = elsewhere.bits + spent;
    const double past = elsewhere.seconds + now - part.begin;
    double scale = all;
    const double beyond = beyondTheEnd * length;
    double ahead = std::max(length - elsewhere.asked - asked, 0.0) + beyond;
    double means = std::max(rate * (length + beyond) - bits,
                            leastShare * rate * (std::max(length - past, 0.0) + beyond));
    if (work.empty()) {
        scale = (all + (recentCost + guess * guessedRecently) / (recentDone + guessedRecently)) / 2;
        ahead = length > 0 ? std::clamp(length - past, shortestPlan, longestPlan) : longestPlan;
        means = std::max(rate * (past + ahead) - bits, leastShare * rate * ahead);
    }
    return 6 * std::log2(scale * ahead / means);
}

int FilmRate::quantiser(Frame frame, double seconds) {
    now = std::max(now, seconds);
    const double difference = std::clamp(wanted(), double{finest}, double{coarsest}) - current;
    if (std::abs(difference) > tolerance) current += difference > 0 ? 1 : -1;
    const double until = std::max(workUntil(now), asked);
    encoding.push_back({current, until - asked});
    asked = until;
    if (frame == Frame::key) return current + keyOffset;
    if (frame == Frame::refinement) return current + refinementOffset;
    return offsets.empty() ? current : std::max(current + offsets[frameAt(now)], finestOfAll);
}

void FilmRate::coded(std::int64_t bits) {
    if (encoding.empty()) return;
    const Asked frame = encoding.front();
    encoding.pop_front();
    const double size = static_cast<double>(bits);
    const double kept = std::exp(-frame.work / memory);
    spent += size;
    cost += size * stepSize(frame.base);
    done += frame.work;
    recentCost = recentCost * kept + size * stepSize(frame.base);
    recentDone = recentDone * kept + frame.work;
}

void FilmRate::finish() {
    // What stood still to the end belongs to the frames before.
    const double until = std::max(workUntil(part.end), asked);
    done += until - asked;
    asked = until;
    now = std::max(now, part.end);
}

EncodingTally FilmRate::tally() const {
    return {now - part.begin, asked, done, cost, spent, current};
}

void FilmRate::setElsewhere(const EncodingTally& others) {
    elsewhere = others;
    // A part begins as the film before it goes on.
    if (asked == 0 && others.quantiser != 0) current = others.quantiser;
}

} // namespace RecordCore::X264
