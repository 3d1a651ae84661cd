#include "RecordCore/Model/SpeedSegment.h"

#include <array>
#include <cstddef>

namespace RecordCore {

namespace {
constexpr std::array<std::string_view, 6> names{"normal", "idle", "agentWorking", "manual", "cut", "hold"};
}

std::string_view name(SpeedSegment::Reason reason) {
    return names[static_cast<std::size_t>(reason)];
}

std::optional<SpeedSegment::Reason> reasonNamed(std::string_view text) {
    for (std::size_t i = 0; i < names.size(); ++i)
        if (names[i] == text) return static_cast<SpeedSegment::Reason>(i);
    return std::nullopt;
}

} // namespace RecordCore
