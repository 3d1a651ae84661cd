#pragma once

#include <optional>
#include <string_view>

namespace RecordCore {

/// A stretch of source time and how fast it plays.
struct SpeedSegment {
    enum class Reason {
        normal,       ///< plays as recorded
        idle,         ///< the screen is still and the user does nothing
        agentWorking, ///< the screen is busy and the user does nothing
        manual,       ///< a block the user made
        cut,          ///< removed; takes no output time
        hold,         ///< near-freeze under a card
    };

    double start = 0; ///< source seconds
    double end = 0;   ///< source seconds
    double speed = 1; ///< source seconds per output second
    Reason reason = Reason::normal;

    double length() const { return end - start; }
    bool isCut() const { return reason == Reason::cut; }

    bool operator==(const SpeedSegment&) const = default;
};

/// The stored name of a reason ("agentWorking"), and back; none for an unknown name.
std::string_view name(SpeedSegment::Reason reason);
std::optional<SpeedSegment::Reason> reasonNamed(std::string_view text);

} // namespace RecordCore
