#pragma once

#include "RecordCore/Model/Project.h"
#include "RecordCore/Planning/Plan.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <vector>

namespace OmbrelRecord {

/// The rules of editing on the timeline, as changes of a project. Pure. Times are source seconds, `duration`
/// is the source's. Every function that takes blocks takes those in force, automatic ones included: what it
/// leaves behind becomes the project's own list. A range whose ends are equal or no numbers changes nothing.
namespace ProjectEditing {

inline constexpr double shortestSpeedBlock = 0.2;
inline constexpr double shortestZoomBlock = 0.3;
/// What is left of a block beside a new one is kept when it is longer than this.
inline constexpr double shortestRemainder = 0.2;
/// The least that stays between the two marks.
inline constexpr double shortestFilm = 0.04;
/// The weakest zoom that a new zoom block gets.
inline constexpr double weakestZoom = 1.35;

/// Brings a block's ends into [0, duration], at least `shortest` apart; where it is too short the start gives
/// way when the end cannot. A source that is shorter than that is filled.
template <typename Block>
void clampTimes(Block& block, double shortest, double duration) {
    // A block dragged beyond the end of the source counts as ending there; else its start could stay behind.
    const double end = std::min(block.end, duration);
    block.start = std::max(0.0, std::min(block.start, end - shortest));
    block.end = std::min(std::max(end, block.start + shortest), duration);
}

/// Changes the block with that id and brings its times in order. False when there is no such block.
bool editSpeed(RecordCore::Project& project, std::vector<RecordCore::SpeedBlock> blocks,
               const RecordCore::Uuid& id, const std::function<void(RecordCore::SpeedBlock&)>& change,
               double duration);
bool editZoom(RecordCore::Project& project, std::vector<RecordCore::ZoomBlock> blocks,
              const RecordCore::Uuid& id, const std::function<void(RecordCore::ZoomBlock&)>& change,
              double duration);

/// Plays a range at a speed; 1 only clears it. What the range covers of other blocks gives way. Returns the
/// new block's id.
std::optional<RecordCore::Uuid> setSpeed(RecordCore::Project& project,
                                         const std::vector<RecordCore::SpeedBlock>& blocks,
                                         const RecordCore::TimeRange& range, double speed);

/// Adds a zoom block over its times; what they cover of other blocks gives way.
bool addZoom(RecordCore::Project& project, const std::vector<RecordCore::ZoomBlock>& blocks,
             const RecordCore::ZoomBlock& block);

bool deleteSpeed(RecordCore::Project& project, std::vector<RecordCore::SpeedBlock> blocks,
                 const RecordCore::Uuid& id);
bool deleteZoom(RecordCore::Project& project, std::vector<RecordCore::ZoomBlock> blocks,
                const RecordCore::Uuid& id);

/// Removes a range from the film, and the splits in it.
void cut(RecordCore::Project& project, const RecordCore::TimeRange& range);

/// Takes back every cut that overlaps or touches the range.
void restoreCuts(RecordCore::Project& project, const RecordCore::TimeRange& range);

/// The cuts inside the kept film; those at its ends show as the trim.
std::vector<RecordCore::TimeRange> interiorCuts(const RecordCore::Project& project, double duration);

/// Splits the kept piece that holds the time by more than 0.05 s on both sides. False when none does.
bool split(RecordCore::Project& project, double time, double duration);

/// The film starts, or ends, at that time. The other mark gives way so that 0.04 s stay; at the very ends of
/// the source the time itself gives way.
void markStart(RecordCore::Project& project, double time, double duration);
void markEnd(RecordCore::Project& project, double time, double duration);

/// How many stretches of the plan play faster than recorded, cuts aside.
int skippedCount(const RecordCore::Plan& plan);

/// What a new zoom block over a range shows: the centre of what happened there (changes of the screen by
/// their energy, clicks) at the level that frames nine tenths of it, between 1.35 and the project's
/// `maxZoom`. Samples and log are the plan's: cropped as the project says.
RecordCore::ZoomBlock framed(const RecordCore::TimeRange& range, const RecordCore::Plan& plan,
                             const std::vector<RecordCore::ActivitySample>& samples,
                             const std::optional<RecordCore::InputLog>& log, double maxZoom);

} // namespace ProjectEditing
} // namespace OmbrelRecord
