#pragma once

#include <array>
#include <chrono>
#include <string_view>

namespace OmbrelRecord {

/// A time of day in UTC as ISO 8601 text ("2026-11-14T18:02:19Z"). Only arithmetic, so that a signal handler
/// may use it too. Years 0 to 9999.
class IsoTime {
public:
    explicit IsoTime(std::chrono::sys_seconds time) {
        const auto day = std::chrono::floor<std::chrono::days>(time);
        const std::chrono::year_month_day date(day);
        const auto seconds = static_cast<int>((time - day).count());
        put(0, static_cast<int>(date.year()), 4);
        put(5, static_cast<int>(static_cast<unsigned>(date.month())), 2);
        put(8, static_cast<int>(static_cast<unsigned>(date.day())), 2);
        put(11, seconds / 3600, 2);
        put(14, seconds / 60 % 60, 2);
        put(17, seconds % 60, 2);
    }

    std::string_view text() const { return {characters.data(), characters.size()}; }

private:
    void put(std::size_t at, int value, int digits) {
        for (int i = digits - 1; i >= 0; --i, value /= 10)
            characters[at + static_cast<std::size_t>(i)] = static_cast<char>('0' + value % 10);
    }

    std::array<char, 20> characters{'0', '0', '0', '0', '-', '0', '0', '-', '0', '0',
                                    'T', '0', '0', ':', '0', '0', ':', '0', '0', 'Z'};
};

} // namespace OmbrelRecord
