#include "OmbrelRecord/EditorModel/EditorModel.h"

#include "OmbrelRecord/EditorModel/ProjectEditing.h"
#include "OmbrelRecord/EditorModel/ViewLists.h"
#include "RecordCore/Planning/Planner.h"

#include <algorithm>
#include <cmath>

namespace OmbrelRecord {

using namespace RecordCore;

namespace {

template <typename Block>
std::optional<Uuid> idOf(const std::vector<Block>& blocks, const QString& id) {
    for (const Block& block : blocks)
        if (ViewLists::text(block.id) == id) return block.id;
    return std::nullopt;
}

template <typename Block>
bool holds(const std::vector<Block>& blocks, const Uuid& id) {
    return std::any_of(blocks.begin(), blocks.end(), [&](const Block& block) { return block.id == id; });
}

} // namespace

const std::vector<SpeedBlock>& EditorModel::speedBlocks() const {
    static const std::vector<SpeedBlock> none;
    if (current.speedBlocks) return *current.speedBlocks;
    if (!current.skipWaiting) return none;
    // Only these decide what the automatic blocks are; with them unchanged the blocks keep their ids.
    Project wanted;
    wanted.crop = current.cropInForce();
    wanted.maxSpeed = current.maxSpeed;
    if (autoSpeedCache.made != wanted) {
        autoSpeedCache.blocks = Planner::speedBlocks(opened.info, opened.samples, opened.log, wanted);
        autoSpeedCache.made = std::move(wanted);
    }
    return autoSpeedCache.blocks;
}

const std::vector<ZoomBlock>& EditorModel::zoomBlocks() const {
    static const std::vector<ZoomBlock> none;
    if (current.zoomBlocks) return *current.zoomBlocks;
    if (!current.followAction) return none;
    Project wanted;
    wanted.crop = current.cropInForce();
    wanted.maxZoom = current.maxZoom;
    wanted.format = current.format; // these two: the shape of what the camera shows
    wanted.padding = current.padding;
    if (autoZoomCache.made != wanted) {
        autoZoomCache.blocks =
            Planner::zoomBlocks(opened.info, opened.samples, opened.log, wanted, viewportAspect());
        autoZoomCache.made = std::move(wanted);
    }
    return autoZoomCache.blocks;
}

void EditorModel::editSpeed(const Uuid& id, const std::function<void(SpeedBlock&)>& change) {
    Project project = current;
    if (ProjectEditing::editSpeed(project, speedBlocks(), id, change, duration()))
        update(std::move(project), "speed " + id.text());
}

void EditorModel::editZoom(const Uuid& id, const std::function<void(ZoomBlock&)>& change) {
    Project project = current;
    if (ProjectEditing::editZoom(project, zoomBlocks(), id, change, duration()))
        update(std::move(project), "zoom " + id.text());
}

void EditorModel::setSpeed(const TimeRange& range, double speed) {
    Project project = current;
    const auto made = ProjectEditing::setSpeed(project, speedBlocks(), range, speed);
    update(std::move(project));
    if (made) select(Selection::Speed{*made});
}

void EditorModel::addZoom(const TimeRange& range) {
    const Project::Cropped seen = current.cropped(opened.info, opened.samples, opened.log);
    const ZoomBlock block =
        ProjectEditing::framed(range, currentPlan, seen.samples, seen.log, current.maxZoom);
    Project project = current;
    if (!ProjectEditing::addZoom(project, zoomBlocks(), block)) return;
    update(std::move(project));
    select(Selection::Zoom{block.id});
}

void EditorModel::deleteSpeed(const Uuid& id) {
    Project project = current;
    if (ProjectEditing::deleteSpeed(project, speedBlocks(), id)) update(std::move(project));
}

void EditorModel::deleteZoom(const Uuid& id) {
    Project project = current;
    if (ProjectEditing::deleteZoom(project, zoomBlocks(), id)) update(std::move(project));
}

void EditorModel::resetSpeedBlocks() {
    Project project = current;
    project.speedBlocks.reset();
    update(std::move(project));
}

void EditorModel::resetZoomBlocks() {
    Project project = current;
    project.zoomBlocks.reset();
    update(std::move(project));
}

void EditorModel::cut(const TimeRange& range) {
    Project project = current;
    ProjectEditing::cut(project, range);
    update(std::move(project));
}

void EditorModel::restoreCuts(const TimeRange& range) {
    Project project = current;
    ProjectEditing::restoreCuts(project, range);
    update(std::move(project));
}

std::vector<TimeRange> EditorModel::interiorCuts() const {
    return ProjectEditing::interiorCuts(current, duration());
}

int EditorModel::skippedCount() const {
    return ProjectEditing::skippedCount(currentPlan);
}

void EditorModel::split() {
    Project project = current;
    if (ProjectEditing::split(project, sourceTime(), duration())) update(std::move(project));
}

void EditorModel::removeSplit(double time) {
    Project project = current;
    const auto nearest =
        std::min_element(project.splits.begin(), project.splits.end(),
                         [time](double a, double b) { return std::abs(a - time) < std::abs(b - time); });
    if (nearest == project.splits.end()) return;
    project.splits.erase(nearest);
    update(std::move(project));
}

void EditorModel::markStart() {
    Project project = current;
    ProjectEditing::markStart(project, sourceTime(), duration());
    update(std::move(project));
}

void EditorModel::markEnd() {
    Project project = current;
    ProjectEditing::markEnd(project, sourceTime(), duration());
    update(std::move(project));
}

void EditorModel::deleteSelection() {
    const Selection::Value what = selected;
    if (const auto* range = std::get_if<TimeRange>(&what)) {
        cut(*range);
        select(Selection::None{});
    } else if (const auto* speed = std::get_if<Selection::Speed>(&what)) {
        deleteSpeed(speed->id);
    } else if (const auto* zoom = std::get_if<Selection::Zoom>(&what)) {
        deleteZoom(zoom->id);
    }
}

void EditorModel::editSpeedBlock(const QString& id, double start, double end, double speed) {
    const auto block = idOf(speedBlocks(), id);
    if (!block || !std::isfinite(start) || !std::isfinite(end) || !std::isfinite(speed) || !(speed > 0))
        return;
    editSpeed(*block, [&](SpeedBlock& changed) {
        changed.start = start;
        changed.end = end;
        if (changed.speed != speed) changed.reason = SpeedSegment::Reason::manual;
        changed.speed = speed;
    });
}

void EditorModel::editZoomBlock(const QString& id, const QVariantMap& changes) {
    const auto block = idOf(zoomBlocks(), id);
    if (!block) return;
    const auto take = [&changes](const char* key, double& out) {
        bool number = false;
        const double value = changes.value(QString::fromLatin1(key)).toDouble(&number);
        if (number && std::isfinite(value)) out = value;
    };
    editZoom(*block, [&](ZoomBlock& changed) {
        take("start", changed.start);
        take("end", changed.end);
        take("x", changed.x);
        take("y", changed.y);
        take("zoom", changed.zoom);
    });
}

void EditorModel::setSpeed(double start, double end, double speed) {
    setSpeed(TimeRange::between(start, end), speed);
}

void EditorModel::addZoom(double start, double end) {
    addZoom(TimeRange::between(start, end));
}

void EditorModel::cut(double start, double end) {
    cut(TimeRange::between(start, end));
}

void EditorModel::restoreCuts(double start, double end) {
    restoreCuts(TimeRange::between(start, end));
}

void EditorModel::select(const Selection::Value& selection) {
    if (selection == selected) return;
    selected = selection;
    Q_EMIT selectionChanged();
}

void EditorModel::selectRange(double start, double end) {
    select(TimeRange::between(std::clamp(start, 0.0, duration()), std::clamp(end, 0.0, duration())));
}

void EditorModel::selectSpeed(const QString& id) {
    if (const auto block = idOf(speedBlocks(), id)) select(Selection::Speed{*block});
}

void EditorModel::selectZoom(const QString& id) {
    if (const auto block = idOf(zoomBlocks(), id)) select(Selection::Zoom{*block});
}

void EditorModel::selectNothing() {
    select(Selection::None{});
}

void EditorModel::dropStaleSelection() {
    const auto* speed = std::get_if<Selection::Speed>(&selected);
    const auto* zoom = std::get_if<Selection::Zoom>(&selected);
    if ((speed && !holds(speedBlocks(), speed->id)) || (zoom && !holds(zoomBlocks(), zoom->id)))
        select(Selection::None{});
}

} // namespace OmbrelRecord
