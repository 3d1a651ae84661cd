#include "OmbrelRecord/EditorModel/TimelineController.h"

#include "OmbrelRecord/EditorModel/ProjectEditing.h"

#include <algorithm>
#include <cmath>

namespace OmbrelRecord {

using namespace RecordCore;
using TimelineEditing::Grip;

namespace {

constexpr double snapPixels = 7;
constexpr double dragPixels = 4; ///< a hand that moved less than this has clicked

} // namespace

void TimelineController::hover(double x, double y) {
    if (!model || drag) return;
    const Zone zone = zoneAt(y);
    Qt::CursorShape over = Qt::ArrowCursor;
    std::optional<Uuid> block;
    int trim = 0;
    if (zone == Zone::Speed || zone == Zone::Zoom) {
        const auto held = blockAt(zone, x);
        if (held) {
            block = lanes().idAt(laneOf(zone), held->index);
            over = held->grip == Grip::body ? Qt::OpenHandCursor : Qt::SizeHorCursor;
        } else {
            over = Qt::CrossCursor;
        }
    } else if (zone == Zone::Film || zone == Zone::Sound || zone == Zone::Activity) {
        trim = zone == Zone::Film ? trimAt(x) : 0;
        over = trim || rangeEdgeAt(x) ? Qt::SizeHorCursor : Qt::IBeamCursor;
    } else if (zone == Zone::Ruler) {
        over = Qt::PointingHandCursor;
    }
    const bool redraw = block != hoveredId || trim != overTrim;
    hovered = zone == Zone::None ? -1 : x;
    hoveredZone = zone;
    hoveredId = block;
    overTrim = trim;
    shape = over;
    Q_EMIT hoverChanged();
    if (redraw) Q_EMIT contentChanged();
}

void TimelineController::leave() {
    hovered = -1;
    hoveredZone = Zone::None;
    const bool redraw = hoveredId || overTrim;
    hoveredId.reset();
    overTrim = 0;
    shape = Qt::ArrowCursor;
    Q_EMIT hoverChanged();
    if (redraw) Q_EMIT contentChanged();
}

QString TimelineController::hoverText() const {
    if (hovered < 0) return {};
    return timeText(view.timeInside(hovered), std::min(view.labelStep(), 0.5));
}

void TimelineController::press(double x, double y, bool extend) {
    if (!model || drag) return;
    const Zone zone = zoneAt(y);
    if (zone == Zone::None) return;
    Drag begun;
    begun.pressX = x;
    begun.pressTime = view.timeInside(x);
    begun.lane = zone;
    if (zone == Zone::Ruler) {
        drag = begun;
        seekSource(begun.pressTime);
        return;
    }
    if (zone == Zone::Speed || zone == Zone::Zoom) {
        if (const auto held = blockAt(zone, x)) {
            const std::vector<TimeRange> blocks = lanes().ranges(laneOf(zone));
            begun.doing = Doing::block;
            begun.id = lanes().idAt(laneOf(zone), held->index);
            begun.grip = held->grip;
            begun.before = begun.range = blocks[held->index];
            begun.limits = TimelineEditing::limitsOf(blocks, held->index, model->duration(),
                                                     TimelineLanes::shortest(laneOf(zone)));
            begun.points = lanes().snapPoints(begun.id);
            drag = std::move(begun);
            model->beginGesture();
            lanes().selectBlock(laneOf(zone), drag->id);
            if (drag->grip == Grip::body) shape = Qt::ClosedHandCursor;
            Q_EMIT hoverChanged();
            return;
        }
        begun.doing = Doing::drawing;
        begun.points = lanes().snapPoints(std::nullopt);
        begun.range = {begun.pressTime, begun.pressTime};
        if (const auto gap = lanes().gapAt(laneOf(zone), begun.pressTime)) begun.before = *gap;
        drag = std::move(begun);
        return;
    }
    const int trim = zone == Zone::Film ? trimAt(x) : 0;
    const auto edge = rangeEdgeAt(x);
    if (trim) {
        begun.doing = trim < 0 ? Doing::trimStart : Doing::trimEnd;
        begun.before = begun.range = {lanes().filmStart(), lanes().filmEnd()};
        model->beginGesture();
    } else if (edge || (extend && std::holds_alternative<TimeRange>(model->selection()))) {
        const TimeRange range = std::get<TimeRange>(model->selection());
        const bool left = edge ? *edge == Grip::start : begun.pressTime < (range.start + range.end) / 2;
        begun.doing = Doing::rangeEdge;
        begun.pressTime = left ? range.end : range.start; // the end that stays
        begun.range = range;
    } else if (extend) {
        begun.doing = Doing::rangeEdge;
        begun.pressTime = model->sourceTime();
        begun.range = {begun.pressTime, begun.pressTime};
    } else {
        begun.doing = Doing::range;
        begun.range = {begun.pressTime, begun.pressTime};
    }
    begun.points = lanes().snapPoints(std::nullopt);
    drag = std::move(begun);
    if (extend) move(x, y);
}

void TimelineController::move(double x, double y, bool free) {
    Q_UNUSED(y)
    if (!drag || !model) return;
    // At the sides the view follows the hand.
    if (x < 0) setScale(view.scrolled(std::max(x, -40.0) / 2));
    if (x > view.width) setScale(view.scrolled(std::min(x - view.width, 40.0) / 2));
    if (!drag->moved && std::abs(x - drag->pressX) < dragPixels && drag->doing != Doing::scrub) return;
    drag->moved = true;
    const double time = view.time(x);
    const double reach = free ? 0 : snapPixels * view.secondsPerPixel;
    drag->snapped.reset();
    switch (drag->doing) {
    case Doing::scrub: {
        // Scrubbing sticks to nothing but the ends of blocks and clicks close by, and only barely.
        seekSource(view.timeInside(x));
        break;
    }
    case Doing::range:
    case Doing::rangeEdge: {
        const auto drawn =
            TimelineEditing::drawn(drag->pressTime, time, model->duration(), drag->points, reach);
        drag->range = drawn.range;
        // The end that stays is not snapped a second time.
        if (drag->doing == Doing::rangeEdge)
            drag->range =
                TimeRange::between(drag->pressTime, std::abs(drawn.range.start - drag->pressTime) >
                                                            std::abs(drawn.range.end - drag->pressTime)
                                                        ? drawn.range.start
                                                        : drawn.range.end);
        drag->snapped = drawn.at;
        model->selectRange(drag->range.start, drag->range.end);
        break;
    }
    case Doing::trimStart:
    case Doing::trimEnd: {
        const bool left = drag->doing == Doing::trimStart;
        const TimelineEditing::Limits limits{0, model->duration(), ProjectEditing::shortestFilm};
        const auto moved =
            TimelineEditing::dragged(drag->before, left ? Grip::start : Grip::end,
                                     time - view.time(drag->pressX), limits, drag->points, reach);
        drag->range = moved.range;
        drag->snapped = moved.at;
        Project project = model->project();
        if (left)
            project.trimStart = moved.range.start;
        else if (moved.range.end >= model->duration() - 1e-6)
            project.trimEnd.reset();
        else
            project.trimEnd = moved.range.end;
        model->update(std::move(project));
        break;
    }
    case Doing::block: {
        const auto moved = TimelineEditing::dragged(drag->before, drag->grip, time - view.time(drag->pressX),
                                                    drag->limits, drag->points, reach);
        drag->snapped = moved.at;
        drag->range = moved.range;
        lanes().setBlock(laneOf(drag->lane), drag->id, moved.range);
        break;
    }
    case Doing::drawing: {
        auto drawn = TimelineEditing::drawn(drag->pressTime, time, model->duration(), drag->points, reach);
        drawn.range.start = std::max(drawn.range.start, drag->before.start);
        drawn.range.end = std::min(drawn.range.end, drag->before.end);
        drag->range = drawn.range;
        drag->snapped = drawn.at;
        Q_EMIT contentChanged();
        break;
    }
    }
    hovered = x;
    Q_EMIT hoverChanged();
    Q_EMIT dragChanged();
}

void TimelineController::release() {
    if (!drag) return;
    const Drag done = std::move(*drag);
    drag.reset();
    if (model) {
        switch (done.doing) {
        case Doing::block:
        case Doing::trimStart:
        case Doing::trimEnd:
            model->endGesture();
            break;
        case Doing::drawing:
            if (done.moved && done.range.length() >= TimelineLanes::shortest(laneOf(done.lane)))
                add(done.lane, done.range);
            else if (!done.moved)
                model->selectNothing();
            break;
        case Doing::range:
            if (done.moved) break;
            if (const auto cut = lanes().cutAt(done.pressTime))
                model->selectRange(cut->start, cut->end);
            else
                model->selectNothing();
            seekSource(done.pressTime);
            break;
        case Doing::rangeEdge:
        case Doing::scrub:
            break;
        }
    }
    if (shape == Qt::ClosedHandCursor) shape = Qt::OpenHandCursor;
    Q_EMIT hoverChanged();
    Q_EMIT dragChanged();
    Q_EMIT contentChanged();
}

bool TimelineController::cancel() {
    if (!drag) return false;
    const Drag given = std::move(*drag);
    drag.reset();
    if (model) {
        if (given.doing == Doing::block || given.doing == Doing::trimStart || given.doing == Doing::trimEnd)
            model->cancelGesture();
        if (given.doing == Doing::range) model->selectNothing();
    }
    shape = Qt::ArrowCursor;
    Q_EMIT hoverChanged();
    Q_EMIT dragChanged();
    Q_EMIT contentChanged();
    return true;
}

void TimelineController::doubleClick(double x, double y) {
    if (!model) return;
    const Zone zone = zoneAt(y);
    if (zone != Zone::Speed && zone != Zone::Zoom) return;
    if (blockAt(zone, x)) return;
    drag.reset(); // of the second press; nothing was drawn yet
    const double time = view.timeInside(x);
    const auto gap = lanes().gapAt(laneOf(zone), time);
    if (!gap) return;
    const double length = std::min(newLength(zone), gap->length());
    if (length < TimelineLanes::shortest(laneOf(zone))) return;
    const double start = std::clamp(time - length / 2, gap->start, gap->end - length);
    add(zone, {start, start + length});
}

std::optional<TimelineController::Draft> TimelineController::draft() const {
    if (!drag || drag->doing != Doing::drawing || !drag->moved) return std::nullopt;
    return Draft{drag->lane, drag->range};
}

double TimelineController::snapX() const {
    return drag && drag->snapped ? view.x(*drag->snapped) : -1;
}

QString TimelineController::dragText() const {
    if (!drag || !drag->moved || drag->doing == Doing::scrub) return {};
    const double step = std::min(view.labelStep(), 0.5);
    const TimeRange& range = drag->range;
    if (drag->doing == Doing::trimStart) return timeText(range.start, step);
    if (drag->doing == Doing::trimEnd) return timeText(range.end, step);
    return tr("%1 – %2 · %3")
        .arg(timeText(range.start, step), timeText(range.end, step), lengthText(range.length()));
}

} // namespace OmbrelRecord
