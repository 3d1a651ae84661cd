#include "RecordCore/Model/Clock.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace RecordCore {

std::string clock(double seconds) {
    const double whole = std::isnan(seconds) ? 0 : std::clamp(std::floor(seconds), 0.0, 1e15);
    const auto total = static_cast<std::int64_t>(whole);
    return fmt::format("{}:{:02}", total / 60, total % 60);
}

} // namespace RecordCore
