#pragma once

#include "RecordCore/Model/Project.h"

#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace OmbrelRecord {

/// The earlier states of a project, for undo and redo. An edit that goes on (a slider being dragged) is one
/// step: edits with the same key merge while less than 0.8 s lie between one and the next. Not synchronised.
class EditHistory {
public:
    static constexpr std::size_t mostEntries = 200;
    static constexpr double coalesceWithin = 0.8; ///< seconds

    /// An edit is about to replace `current`. `now` are seconds of a clock that never goes back.
    void record(const RecordCore::Project& current, const std::optional<std::string>& key, double now);

    /// Forgets the last step; what it led away from is not kept for redo.
    void drop();

    bool canUndo() const { return !history.empty(); }
    bool canRedo() const { return !future.empty(); }
    std::size_t undoCount() const { return history.size(); }

    /// The project to go to from `current`; none when there is no step left.
    std::optional<RecordCore::Project> undo(const RecordCore::Project& current);
    std::optional<RecordCore::Project> redo(const RecordCore::Project& current);

private:
    std::deque<RecordCore::Project> history; ///< newest last
    std::vector<RecordCore::Project> future; ///< next redo last
    std::optional<std::pair<std::string, double>> lastCoalesce;
};

} // namespace OmbrelRecord
