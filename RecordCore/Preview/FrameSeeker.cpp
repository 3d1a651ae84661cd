#include "RecordCore/Preview/FrameSeeker.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace RecordCore {

namespace {

constexpr double nearly = 0.000001;
constexpr std::size_t fewest = 4; ///< frames kept however large they are

std::size_t bytes(const PlanarView& picture) {
    return static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height) * 3 / 2;
}

bool holds(double from, double until, double seconds) {
    return from <= seconds + nearly && until > seconds + nearly;
}

} // namespace

FrameSeeker::FrameSeeker(std::unique_ptr<VideoReader> videoReader, std::size_t keptBytes) :
    reader(std::move(videoReader)), keptMost(keptBytes) {
    want(0);
}

void FrameSeeker::want(double seconds) {
    target = std::isnan(seconds) ? 0 : seconds;
    isFound = false;
    result.reset();
    jumpTo.reset();
    look();
    if (isFound) return;
    for (const Known& known : kept)
        if (holds(known.frame.time, known.until, target)) {
            result = known.frame;
            isFound = true;
            return;
        }
    const std::optional<VideoReader::SeekCost> cost = reader->seekCost(target);
    const double key = cost ? cost->keyTime : target;
    if (!current || current->time > target + nearly)
        jumpTo = key;
    else if (cost && key > (next ? next->time : current->time) + nearly)
        jumpTo = key;
}

/// Whether what the reader gave last is it.
void FrameSeeker::look() {
    if (!current) return;
    if (holds(current->time,
              next    ? next->time
              : ended ? std::numeric_limits<double>::infinity()
                      : -1,
              target)) {
        result = current;
        isFound = true;
    }
}

bool FrameSeeker::step() {
    if (isFound) return true;
    if (jumpTo) {
        keepCurrent();
        reader->seek(*jumpTo);
        jumpTo.reset();
        next.reset();
        ended = false;
        current = reader->next();
        // A time before all frames shows the first one.
        if (!current || current->time > target + nearly) {
            result = current;
            isFound = true;
        }
        return isFound;
    }
    if (!next && !ended) {
        next = reader->next();
        ended = !next;
    } else if (next) {
        keepCurrent();
        current = std::exchange(next, std::nullopt);
        next = reader->next();
        ended = !next;
    }
    look();
    return isFound;
}

int FrameSeeker::remaining() const {
    if (isFound) return 0;
    const std::optional<VideoReader::SeekCost> cost = reader->seekCost(target);
    if (!cost) return 1;
    if (jumpTo || !current) return cost->frames;
    const std::optional<VideoReader::SeekCost> here = reader->seekCost(current->time);
    return std::max(1, here && here->keyTime == cost->keyTime ? cost->frames - here->frames : cost->frames);
}

std::optional<VideoFrame> FrameSeeker::best() const {
    if (isFound) return result;
    std::optional<VideoFrame> latest;
    const auto consider = [&](const VideoFrame& frame) {
        if (frame.time <= target + nearly && (!latest || frame.time > latest->time)) latest = frame;
    };
    if (current) consider(*current);
    for (const Known& known : kept)
        consider(known.frame);
    return latest;
}

void FrameSeeker::keepCurrent() {
    if (!current || (!next && !ended)) return;
    const double until = next ? next->time : std::numeric_limits<double>::infinity();
    const bool there = std::any_of(kept.begin(), kept.end(),
                                   [&](const Known& known) { return known.frame.time == current->time; });
    if (!there) kept.push_back({*current, until});
    std::size_t total = 0;
    for (const Known& known : kept)
        total += bytes(known.frame.picture);
    while (kept.size() > fewest && total > keptMost) {
        total -= bytes(kept.front().frame.picture);
        kept.pop_front();
    }
}

} // namespace RecordCore
