#pragma once

#include <cstdint>
#include <vector>

namespace RecordCore {

/// Frames of a film, `end` not included.
struct FilmRange {
    std::int64_t begin = 0;
    std::int64_t end = 0;
    bool operator==(const FilmRange&) const = default;
};

/// Cuts a film into ranges of about `keysPerRange` key intervals (1 or more), nearly alike, that begin where
/// it has a key frame anyway. At least one; it depends on nothing but these numbers.
std::vector<FilmRange> filmRanges(std::int64_t frames, int keyInterval, int keysPerRange);

} // namespace RecordCore
