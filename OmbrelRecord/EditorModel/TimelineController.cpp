#include "OmbrelRecord/EditorModel/TimelineController.h"

#include "OmbrelRecord/EditorModel/ProjectEditing.h"

#include <algorithm>
#include <cmath>

namespace OmbrelRecord {

using namespace RecordCore;
using TimelineEditing::Grip;
using TimelineEditing::Held;

namespace {

constexpr double snapPixels = 7;
constexpr double dragPixels = 4; ///< a hand that moved less than this has clicked
constexpr double trimReach = 9;
constexpr double edgeReach = 5;
constexpr double newZoomSeconds = 3;
constexpr double newSpeedSeconds = 4;

/// Speeds that a key press steps through.
constexpr double speedSteps[] = {0.25, 0.5, 0.75, 1.5, 2, 3, 4, 6, 8, 12, 16, 24, 40, 60, 100};

/// "3:10", or "4.2 s" where whole seconds say too little.
QString lengthText(double seconds) {
    if (seconds < 9.95)
        return TimelineController::tr("%1 s").arg(QString::number(std::round(seconds * 10) / 10, 'f', 1));
    return timeText(std::round(seconds));
}

} // namespace

TimelineController::TimelineController(QObject* parent) : QObject(parent) {
    connect(this, &TimelineController::scaleChanged, this, &TimelineController::selectionMoved);
    connect(this, &TimelineController::scaleChanged, this, &TimelineController::playheadMoved);
}

TimelineController::Row TimelineController::row(Zone zone, bool sound) {
    const double soundHeight = sound ? 26 : 0;
    switch (zone) {
    case Zone::Ruler:
        return {0, 24};
    case Zone::Film:
        return {24, 56};
    case Zone::Sound:
        return {80, soundHeight};
    case Zone::Activity:
        return {80 + soundHeight, 20};
    case Zone::Speed:
        return {108 + soundHeight, 30};
    case Zone::Zoom:
        return {144 + soundHeight, 30};
    case Zone::None:
        break;
    }
    return {0, 180 + soundHeight};
}

TimelineController::Row TimelineController::row(Zone zone) const {
    return row(zone, model && model->hasSound());
}

double TimelineController::height() const {
    return row(Zone::None).height;
}

TimelineController::Zone TimelineController::zoneAt(double y) const {
    for (const Zone zone : {Zone::Ruler, Zone::Film, Zone::Sound, Zone::Activity, Zone::Speed, Zone::Zoom}) {
        const Row here = row(zone);
        if (here.height > 0 && y >= here.y && y < here.bottom()) return zone;
    }
    // Between the lanes the nearer one is meant.
    if (y >= row(Zone::Activity).bottom() && y < row(Zone::Speed).y) return Zone::Activity;
    if (y >= row(Zone::Speed).bottom() && y < row(Zone::Zoom).y)
        return y < row(Zone::Speed).bottom() + 3 ? Zone::Speed : Zone::Zoom;
    return Zone::None;
}

void TimelineController::setEditor(EditorModel* editor) {
    if (model == editor) return;
    if (model) {
        cancel();
        disconnect(model, nullptr, this, nullptr);
    }
    model = editor;
    view = TimelineScale::fitting(model ? model->duration() : 0, view.width);
    if (model) {
        connect(model, &EditorModel::playheadChanged, this, &TimelineController::playheadChanged);
        connect(model, &EditorModel::selectionChanged, this, &TimelineController::selectionMoved);
        connect(model, &EditorModel::selectionChanged, this, &TimelineController::contentChanged);
        connect(model, &EditorModel::projectChanged, this, &TimelineController::selectionMoved);
        connect(model, &EditorModel::projectChanged, this, &TimelineController::contentChanged);
        connect(model, &EditorModel::planChanged, this, [this] {
            Q_EMIT playheadMoved();
            Q_EMIT contentChanged();
        });
    }
    Q_EMIT editorChanged();
    Q_EMIT scaleChanged();
    Q_EMIT contentChanged();
}

// What shows.

void TimelineController::setScale(const TimelineScale& scale) {
    if (scale == view) return;
    view = scale;
    Q_EMIT scaleChanged();
}

void TimelineController::setWidth(double width) {
    setScale(view.resized(width));
}

void TimelineController::setStart(double start) {
    setScale(view.scrolled((start - view.start) / view.secondsPerPixel));
}

void TimelineController::magnify(double factor, double x) {
    setScale(view.magnified(factor, x));
}

void TimelineController::magnifyHere(double factor) {
    const double x = playheadX();
    magnify(factor, x >= 0 && x <= view.width ? x : view.width / 2);
}

void TimelineController::scroll(double pixels) {
    setScale(view.scrolled(pixels));
}

void TimelineController::fit() {
    setScale(TimelineScale::fitting(view.duration, view.width));
}

void TimelineController::showSelection() {
    const QRectF rect = selectionRect();
    if (!rect.isEmpty()) setScale(view.showing(view.time(rect.left()), view.time(rect.right())));
}

void TimelineController::revealPlayhead() {
    if (model) setScale(view.revealing(model->sourceTime()));
}

double TimelineController::playheadX() const {
    return model ? view.x(model->sourceTime()) : 0;
}

void TimelineController::playheadChanged() {
    // While a hand holds something nothing slides away under it.
    if (model->playing() && !drag) setScale(view.revealing(model->sourceTime(), 0.02));
    Q_EMIT playheadMoved();
}

void TimelineController::seekSource(double source) {
    if (!model) return;
    model->pause();
    model->seek(model->outputTime(std::clamp(source, 0.0, model->duration())));
}

// What there is.

TimelineLanes TimelineController::lanes() const {
    return TimelineLanes(*model);
}

TimelineLanes::Lane TimelineController::laneOf(Zone zone) {
    return zone == Zone::Speed ? TimelineLanes::Lane::speed : TimelineLanes::Lane::zoom;
}

std::optional<Held> TimelineController::blockAt(Zone lane, double x) const {
    return TimelineEditing::blockAt(lanes().ranges(laneOf(lane)), view, x,
                                    lanes().selectedIndex(laneOf(lane)));
}

void TimelineController::add(Zone lane, const TimeRange& range) {
    if (lane == Zone::Speed)
        model->setSpeed(range, newSpeed);
    else
        model->addZoom(range);
}

int TimelineController::trimAt(double x) const {
    if (!model) return 0;
    const double left = view.x(lanes().filmStart()) - x;
    const double right = x - view.x(lanes().filmEnd());
    // The handles stand outside of what is kept: inside, the film itself is meant.
    if (left > -3 && left < trimReach + 3) return -1;
    if (right > -3 && right < trimReach + 3) return 1;
    return 0;
}

std::optional<Grip> TimelineController::rangeEdgeAt(double x) const {
    const auto* range = model ? std::get_if<TimeRange>(&model->selection()) : nullptr;
    if (!range) return std::nullopt;
    const double left = std::abs(view.x(range->start) - x);
    const double right = std::abs(view.x(range->end) - x);
    if (std::min(left, right) > edgeReach) return std::nullopt;
    return left < right ? Grip::start : Grip::end;
}

// The pointer.

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
    const double length = std::min(zone == Zone::Speed ? newSpeedSeconds : newZoomSeconds, gap->length());
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

// The selection.

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
    const double length = std::min(lane == Zone::Speed ? newSpeedSeconds : newZoomSeconds, gap->length());
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

QString TimelineController::speedLabel(double speed, double seconds) {
    return tr("%1 · %2 → %3").arg(speedText(speed), lengthText(seconds), lengthText(seconds / speed));
}

} // namespace OmbrelRecord
