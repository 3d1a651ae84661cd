#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>

namespace RecordCore {

/// A half-open stretch [start, end) of recording time, in seconds of the source. Plain value; equality is
/// exact. Decoded ranges are taken as they stand, only `between` puts its ends in order.
struct TimeRange {
    double start = 0;
    double end = 0;

    static constexpr TimeRange between(double a, double b) { return {std::min(a, b), std::max(a, b)}; }

    constexpr double length() const { return end - start; }
    constexpr bool contains(double t) const { return start <= t && t < end; }

    constexpr bool operator==(const TimeRange&) const = default;
};

} // namespace RecordCore

/// Hashes agree with equality: negative zero hashes as zero (std::hash<double> sees to it).
template <>
struct std::hash<RecordCore::TimeRange> {
    std::size_t operator()(const RecordCore::TimeRange& range) const noexcept {
        const std::size_t a = std::hash<double>{}(range.start);
        const std::size_t b = std::hash<double>{}(range.end);
        return a ^ (b + 0x9e3779b97f4a7c15ULL + (a << 6) + (a >> 2));
    }
};
