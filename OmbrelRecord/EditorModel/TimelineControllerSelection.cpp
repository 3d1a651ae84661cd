#include "OmbrelRecord/EditorModel/TimelineController.h"

#include <algorithm>
#include <cmath>

namespace OmbrelRecord {

using namespace RecordCore;
using TimelineEditing::Grip;

namespace {

/// Speeds that a key press steps through.
constexpr double speedSteps[] = {0.25, 0.5, 0.75, 1.5, 2, 3, 4, 6, 8, 12, 16, 24, 40, 60, 100};

} // namespace

QRectF TimelineController::selectionRect() const {
    if (!model) return {};
    const auto rect = [this](const TimeRange& range, double y, double height) {
        const double left = view.x(range.start);
        return QRectF(left, y, std::max(view.x(range.end) - left, 4.0), height);
    };
    if (const auto* range = std::get_if<TimeRange>(&model->selection()))
        return rect(*range, row(Zone::Film).y, row(Zone::Activity).bottom() - row(Zone::Film).y);
    for (const Zone lane : {Zone::Speed, Zone::Zoom})
        if (const auto index = lanes().selectedIndex(laneOf(lane)))
            return rect(lanes().ranges(laneOf(lane))[*index], row(lane).y, row(lane).height);
    return {};
}

QString TimelineController::selectionKind() const {
    if (!model || selectionRect().isEmpty()) return QStringLiteral("none");
    if (std::holds_alternative<TimeRange>(model->selection())) return QStringLiteral("range");
    return lanes().selectedIndex(laneOf(Zone::Speed)) ? QStringLiteral("speed") : QStringLiteral("zoom");
}

QString TimelineController::selectionText() const {
    if (!model) return {};
    const auto span = [](double start, double end) {
        return tr("%1 to %2").arg(timeText(start, 0.1), timeText(end, 0.1));
    };
    if (const auto* range = std::get_if<TimeRange>(&model->selection()))
        return tr("Selected range, %1").arg(span(range->start, range->end));
    if (const auto index = lanes().selectedIndex(laneOf(Zone::Speed))) {
        const SpeedBlock& block = model->speedBlocks()[*index];
        return tr("Speed block, %1, %2").arg(speedText(block.speed), span(block.start, block.end));
    }
    if (const auto index = lanes().selectedIndex(laneOf(Zone::Zoom))) {
        const ZoomBlock& block = model->zoomBlocks()[*index];
        return tr("Zoom block, %1, %2").arg(speedText(block.zoom), span(block.start, block.end));
    }
    return {};
}

bool TimelineController::selectionRestorable() const {
    const auto* range = model ? std::get_if<TimeRange>(&model->selection()) : nullptr;
    if (!range) return false;
    const std::vector<TimeRange>& cuts = model->project().cuts;
    return std::any_of(cuts.begin(), cuts.end(), [range](const TimeRange& cut) {
        return cut.end > range->start && cut.start < range->end;
    });
}

bool TimelineController::selectionInFilm() const {
    const auto* range = model ? std::get_if<TimeRange>(&model->selection()) : nullptr;
    if (!range) return false;
    const std::vector<TimeRange> kept = model->project().kept(model->duration());
    return std::any_of(kept.begin(), kept.end(), [range](const TimeRange& piece) {
        return piece.end > range->start + 1e-6 && piece.start < range->end - 1e-6;
    });
}

bool TimelineController::selectNeighbour(Zone lane, int direction) {
    if (!model) return false;
    const std::vector<TimeRange> blocks = lanes().ranges(laneOf(lane));
    if (blocks.empty()) return false;
    std::size_t next = 0;
    if (const auto now = lanes().selectedIndex(laneOf(lane))) {
        if (direction < 0 ? *now == 0 : *now + 1 == blocks.size()) return false;
        next = direction < 0 ? *now - 1 : *now + 1;
    } else {
        // From where the playhead is.
        const double time = model->sourceTime();
        const auto after = std::find_if(blocks.begin(), blocks.end(),
                                        [time](const TimeRange& block) { return block.end > time; });
        next = after == blocks.end() ? blocks.size() - 1 : static_cast<std::size_t>(after - blocks.begin());
        if (direction < 0 && next > 0 && blocks[next].start > time) --next;
    }
    lanes().selectBlock(laneOf(lane), lanes().idAt(laneOf(lane), next));
    setScale(view.revealing(blocks[next].start));
    return true;
}

void TimelineController::nudge(double seconds, int edge) {
    if (!model) return;
    const Grip grip = edge < 0 ? Grip::start : edge > 0 ? Grip::end : Grip::body;
    if (const auto* range = std::get_if<TimeRange>(&model->selection())) {
        const auto moved =
            TimelineEditing::dragged(*range, grip, seconds, {0, model->duration(), 0.02}, {}, 0);
        model->selectRange(moved.range.start, moved.range.end);
        return;
    }
    for (const Zone lane : {Zone::Speed, Zone::Zoom})
        if (const auto index = lanes().selectedIndex(laneOf(lane))) {
            const std::vector<TimeRange> blocks = lanes().ranges(laneOf(lane));
            const auto limits = TimelineEditing::limitsOf(blocks, *index, model->duration(),
                                                          TimelineLanes::shortest(laneOf(lane)));
            const auto moved = TimelineEditing::dragged(blocks[*index], grip, seconds, limits, {}, 0);
            lanes().setBlock(laneOf(lane), lanes().idAt(laneOf(lane), *index), moved.range);
            return;
        }
}

void TimelineController::step(int direction) {
    if (!model) return;
    if (const auto index = lanes().selectedIndex(laneOf(Zone::Speed))) {
        const SpeedBlock block = model->speedBlocks()[*index];
        double next = block.speed;
        if (direction > 0) {
            for (const double speed : speedSteps)
                if (speed > block.speed + 1e-6) {
                    next = speed;
                    break;
                }
        } else {
            for (const double speed : speedSteps)
                if (speed < block.speed - 1e-6) next = speed;
        }
        model->editSpeed(block.id, [next](SpeedBlock& changed) {
            if (changed.speed != next) changed.reason = SpeedSegment::Reason::manual;
            changed.speed = next;
        });
    } else if (const auto zoom = lanes().selectedIndex(laneOf(Zone::Zoom))) {
        const ZoomBlock block = model->zoomBlocks()[*zoom];
        const double next = std::clamp(std::round((block.zoom + direction * 0.1) * 10) / 10, 1.0, 4.0);
        model->editZoom(block.id, [next](ZoomBlock& changed) { changed.zoom = next; });
    }
}

void TimelineController::addAtPlayhead(Zone lane) {
    if (!model) return;
    const double time = model->sourceTime();
    const auto gap = lanes().gapAt(laneOf(lane), time);
    if (!gap) return;
    const double length = std::min(newLength(lane), gap->length());
    if (length < TimelineLanes::shortest(laneOf(lane))) return;
    const double start = std::min(time, gap->end - length);
    add(lane, {start, start + length});
}

void TimelineController::selectFromPlayhead() {
    if (!model) return;
    const double time = model->sourceTime();
    const auto* range = std::get_if<TimeRange>(&model->selection());
    const double end = range && range->end > time ? range->end : std::min(time + 2, model->duration());
    model->selectRange(time, end);
}

void TimelineController::selectToPlayhead() {
    if (!model) return;
    const double time = model->sourceTime();
    const auto* range = std::get_if<TimeRange>(&model->selection());
    const double start = range && range->start < time ? range->start : std::max(time - 2, 0.0);
    model->selectRange(start, time);
}

void TimelineController::cutSelection() {
    if (model && std::holds_alternative<TimeRange>(model->selection())) model->deleteSelection();
}

void TimelineController::restoreSelection() {
    const auto* range = model ? std::get_if<TimeRange>(&model->selection()) : nullptr;
    if (!range) return;
    const TimeRange restored = *range;
    model->selectNothing();
    model->restoreCuts(restored);
}

void TimelineController::speedUpSelection(double speed) {
    const auto* range = model ? std::get_if<TimeRange>(&model->selection()) : nullptr;
    if (!range) return;
    const TimeRange chosen = *range;
    model->setSpeed(chosen, speed);
}

void TimelineController::zoomSelection() {
    const auto* range = model ? std::get_if<TimeRange>(&model->selection()) : nullptr;
    if (!range) return;
    const TimeRange chosen = *range;
    model->addZoom(chosen);
}

} // namespace OmbrelRecord
