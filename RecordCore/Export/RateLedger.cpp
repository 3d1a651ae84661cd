#include "RecordCore/Export/RateLedger.h"

#include "RecordCore/Model/RecordingError.h"

#include <algorithm>

namespace RecordCore {

RateLedger::RateLedger(const std::vector<int>& steps) : ranges(steps.size()), whole(1) {
    for (std::size_t i = 0; i < steps.size(); ++i) {
        ranges[i].steps = static_cast<std::size_t>(std::max(steps[i], 1));
        longest = std::max(longest, ranges[i].steps);
    }
    const std::size_t others = std::max<std::size_t>(ranges.size(), 2) - 1;
    lead = (longest + others - 1) / others;
}

void RateLedger::enter(std::size_t range, const EncodingTally& tally) {
    {
        const std::lock_guard lock(mutex);
        ranges.at(range).entries.push_back(tally);
        while (whole.size() <= ranges.size()) {
            const Range& next = ranges[whole.size() - 1];
            if (next.entries.size() < next.steps) break;
            whole.push_back(EncodingTally(whole.back()) += next.entries.back());
        }
    }
    entered.notify_all();
}

/// How many entries of range `of` count.
std::size_t RateLedger::wanted(std::size_t of, std::size_t range, int step) const {
    if (of == 0) return ranges[of].steps;
    return std::min(static_cast<std::size_t>(step) + lead * (range - of), ranges[of].steps);
}

EncodingTally RateLedger::before(std::size_t range, int step) {
    std::unique_lock lock(mutex);
    // Those before are whole: they lead by more than they are long.
    const std::size_t span = (longest + lead - 1) / lead;
    const std::size_t first = range > span ? range - span : 0;
    entered.wait(lock, [&] {
        if (stopped) return true;
        if (whole.size() <= first) return false;
        for (std::size_t i = first; i < range; ++i)
            if (ranges[i].entries.size() < wanted(i, range, step)) return false;
        return true;
    });
    if (stopped) throw RecordingError("stopped");
    EncodingTally sum = whole[first];
    for (std::size_t i = first; i < range; ++i)
        sum += ranges[i].entries[wanted(i, range, step) - 1];
    return sum;
}

void RateLedger::stop() {
    {
        const std::lock_guard lock(mutex);
        stopped = true;
    }
    entered.notify_all();
}

} // namespace RecordCore
