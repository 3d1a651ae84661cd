#include "OmbrelRecord/EditorModel/TimelineLanes.h"

#include "OmbrelRecord/EditorModel/ProjectEditing.h"

#include <algorithm>
#include <utility>
#include <variant>

namespace OmbrelRecord {

using namespace RecordCore;

double TimelineLanes::shortest(Lane lane) {
    return lane == Lane::zoom ? ProjectEditing::shortestZoomBlock : ProjectEditing::shortestSpeedBlock;
}

std::vector<TimeRange> TimelineLanes::ranges(Lane lane) const {
    std::vector<TimeRange> list;
    const auto collect = [&list](const auto& blocks) {
        list.reserve(blocks.size());
        for (const auto& block : blocks)
            list.push_back({block.start, block.end});
    };
    if (lane == Lane::speed) collect(model.speedBlocks());
    if (lane == Lane::zoom) collect(model.zoomBlocks());
    return list;
}

Uuid TimelineLanes::idAt(Lane lane, std::size_t index) const {
    return lane == Lane::speed ? model.speedBlocks()[index].id : model.zoomBlocks()[index].id;
}

std::optional<std::size_t> TimelineLanes::selectedIndex(Lane lane) const {
    const auto find = [](const auto& blocks, const Uuid& id) -> std::optional<std::size_t> {
        for (std::size_t i = 0; i < blocks.size(); ++i)
            if (blocks[i].id == id) return i;
        return std::nullopt;
    };
    if (const auto* speed = std::get_if<EditorModel::Selection::Speed>(&model.selection());
        speed && lane == Lane::speed)
        return find(model.speedBlocks(), speed->id);
    if (const auto* zoom = std::get_if<EditorModel::Selection::Zoom>(&model.selection());
        zoom && lane == Lane::zoom)
        return find(model.zoomBlocks(), zoom->id);
    return std::nullopt;
}

void TimelineLanes::selectBlock(Lane lane, const Uuid& id) {
    if (lane == Lane::speed)
        model.select(EditorModel::Selection::Speed{id});
    else
        model.select(EditorModel::Selection::Zoom{id});
}

void TimelineLanes::setBlock(Lane lane, const Uuid& id, const TimeRange& range) {
    const auto place = [&range](auto& block) {
        block.start = range.start;
        block.end = range.end;
    };
    if (lane == Lane::speed)
        model.editSpeed(id, place);
    else
        model.editZoom(id, place);
}

std::optional<TimeRange> TimelineLanes::gapAt(Lane lane, double time) const {
    TimeRange gap{0, model.duration()};
    for (const TimeRange& block : ranges(lane)) {
        if (block.contains(time)) return std::nullopt;
        if (block.end <= time) gap.start = std::max(gap.start, block.end);
        if (block.start > time) gap.end = std::min(gap.end, block.start);
    }
    return gap;
}

std::optional<TimeRange> TimelineLanes::cutAt(double time) const {
    for (const TimeRange& cut : model.interiorCuts())
        if (cut.contains(time)) return cut;
    return std::nullopt;
}

double TimelineLanes::filmStart() const {
    return std::clamp(model.project().trimStart, 0.0, model.duration());
}

double TimelineLanes::filmEnd() const {
    return std::clamp(model.project().trimEnd.value_or(model.duration()), 0.0, model.duration());
}

TimelineEditing::SnapPoints TimelineLanes::snapPoints(const std::optional<Uuid>& except,
                                                      bool playhead) const {
    std::vector<double> times{0, model.duration(), filmStart(), filmEnd()};
    if (playhead) times.push_back(model.sourceTime());
    const auto edges = [&](const auto& blocks) {
        for (const auto& block : blocks) {
            if (except && block.id == *except) continue;
            times.push_back(block.start);
            times.push_back(block.end);
        }
    };
    edges(model.speedBlocks());
    edges(model.zoomBlocks());
    for (const TimeRange& cut : model.interiorCuts()) {
        times.push_back(cut.start);
        times.push_back(cut.end);
    }
    for (const double split : model.project().splits)
        times.push_back(split);
    if (model.recording().log)
        for (const InputLog::Event& event : model.recording().log->events)
            if (event.kind == InputLog::Event::Kind::click || event.kind == InputLog::Event::Kind::rightClick)
                times.push_back(event.t);
    return TimelineEditing::SnapPoints(std::move(times));
}

} // namespace OmbrelRecord
