#include "OmbrelRecord/EditorModel/EditHistory.h"

namespace OmbrelRecord {

using RecordCore::Project;

void EditHistory::record(const Project& current, const std::optional<std::string>& key, double now) {
    const bool merges =
        key && lastCoalesce && lastCoalesce->first == *key && now - lastCoalesce->second < coalesceWithin;
    if (!merges) {
        if (history.size() >= mostEntries) history.pop_front();
        history.push_back(current);
    }
    lastCoalesce = key ? std::optional(std::pair(*key, now)) : std::nullopt;
    future.clear();
}

void EditHistory::drop() {
    if (!history.empty()) history.pop_back();
    lastCoalesce.reset();
}

std::optional<Project> EditHistory::undo(const Project& current) {
    if (history.empty()) return std::nullopt;
    future.push_back(current);
    std::optional<Project> earlier = std::move(history.back());
    history.pop_back();
    lastCoalesce.reset(); // the next edit, of whatever kind, is a step of its own
    return earlier;
}

std::optional<Project> EditHistory::redo(const Project& current) {
    if (future.empty()) return std::nullopt;
    if (history.size() >= mostEntries) history.pop_front();
    history.push_back(current);
    std::optional<Project> later = std::move(future.back());
    future.pop_back();
    lastCoalesce.reset();
    return later;
}

} // namespace OmbrelRecord
