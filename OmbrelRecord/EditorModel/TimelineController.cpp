#include "OmbrelRecord/EditorModel/TimelineController.h"

#include <algorithm>
#include <cmath>

namespace OmbrelRecord {

using namespace RecordCore;
using TimelineEditing::Grip;
using TimelineEditing::Held;

namespace {

constexpr double trimReach = 9;
constexpr double edgeReach = 5;

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

double TimelineController::newLength(Zone lane) {
    return lane == Zone::Speed ? 4 : 3;
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

// Words.

QString TimelineController::lengthText(double seconds) {
    if (seconds < 9.95) return tr("%1 s").arg(QString::number(std::round(seconds * 10) / 10, 'f', 1));
    return timeText(std::round(seconds));
}

QString TimelineController::speedLabel(double speed, double seconds) {
    return tr("%1 · %2 → %3").arg(speedText(speed), lengthText(seconds), lengthText(seconds / speed));
}

} // namespace OmbrelRecord
