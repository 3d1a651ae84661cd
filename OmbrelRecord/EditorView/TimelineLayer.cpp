#include "OmbrelRecord/EditorView/TimelineLayer.h"

#include <QtCore/QElapsedTimer>
#include <QtGui/QFontMetricsF>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtQuick/QQuickWindow>
#include <algorithm>
#include <cmath>

namespace OmbrelRecord {

using namespace RecordCore;

namespace {

constexpr double pieceRadius = 6;
constexpr double blockRadius = 7;
constexpr double gripWidth = 3;
/// Clicks that stand closer than this are one mark.
constexpr double clickPixels = 3;
/// On a selected block of either lane; white is too faint on both.
const QColor inkOnBlock(0x14, 0x16, 0x1b);

QColor mixed(const QColor& a, const QColor& b, double share) {
    const auto channel = [share](float from, float to) {
        return static_cast<float>(from + (to - from) * share);
    };
    return QColor::fromRgbF(channel(a.redF(), b.redF()), channel(a.greenF(), b.greenF()),
                            channel(a.blueF(), b.blueF()));
}

QColor withAlpha(QColor color, double alpha) {
    color.setAlphaF(static_cast<float>(alpha));
    return color;
}

/// Diagonal lines at fixed places of the screen, 8 pixels apart, clipped to a shape.
void hatch(QPainter& painter, const QRectF& area, const QColor& color) {
    painter.save();
    painter.setClipRect(area, Qt::IntersectClip);
    painter.setPen(QPen(color, 1.5));
    constexpr double distance = 8;
    const double height = area.height();
    for (double x = std::floor((area.left() - height) / distance) * distance; x < area.right(); x += distance)
        painter.drawLine(QPointF(x, area.bottom()), QPointF(x + height, area.top()));
    painter.restore();
}

} // namespace

TimelineLayer::TimelineLayer(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    connect(this, &TimelineLayer::lookChanged, this, [this] {
        openMedia();
        update();
    });
}

void TimelineLayer::setController(TimelineController* controller) {
    if (shown == controller) return;
    if (shown) disconnect(shown, nullptr, this, nullptr);
    shown = controller;
    if (shown) {
        connect(shown, &TimelineController::editorChanged, this, [this] {
            openMedia();
            update();
        });
        connect(shown, &TimelineController::scaleChanged, this, [this] {
            showSlots();
            update();
        });
        connect(shown, &TimelineController::contentChanged, this, [this] {
            if (part != Part::Ruler) update();
        });
    }
    openMedia();
    Q_EMIT controllerChanged();
    update();
}

void TimelineLayer::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickPaintedItem::geometryChange(now, before);
    showSlots();
}

void TimelineLayer::itemChange(ItemChange change, const ItemChangeData& value) {
    QQuickPaintedItem::itemChange(change, value);
    if (change == ItemSceneChange || change == ItemDevicePixelRatioHasChanged) {
        mediaOf = nullptr; // pictures of another size
        openMedia();
    }
}

double TimelineLayer::ratio() const {
    return window() ? window()->effectiveDevicePixelRatio() : 1;
}

void TimelineLayer::openMedia() {
    EditorModel* model = shown && part == Part::Film && window() ? shown->editor() : nullptr;
    if (mediaOf == model && model) return;
    mediaOf = model;
    if (film) disconnect(film, nullptr, this, nullptr);
    if (sound) disconnect(sound, nullptr, this, nullptr);
    film = nullptr;
    sound = nullptr;
    if (!model) return;
    film = model->filmstrip(static_cast<int>(std::lround(shown->row(Zone::Film).height * ratio())));
    sound = model->waveform();
    const auto more = [this] {
        update();
        Q_EMIT busyChanged();
    };
    if (film) connect(film, &Filmstrip::changed, this, more);
    if (sound) connect(sound, &Waveform::changed, this, more);
    showSlots();
}

namespace {

struct Slots {
    int level = 0;
    double distance = 1;
    qint64 first = 0;
    qint64 last = 0;
};

/// Pictures stand a little closer than they are wide, and lose that much at their sides.
Slots slotsOf(const TimelineScale& scale, double pictureWidth) {
    Slots found;
    found.level = Filmstrip::levelFor(pictureWidth * scale.secondsPerPixel);
    found.distance = Filmstrip::distance(found.level);
    found.first = static_cast<qint64>(std::max(0.0, std::floor(scale.time(0) / found.distance)));
    found.last = static_cast<qint64>(
        std::max(0.0, std::floor(std::min(scale.time(scale.width), scale.duration) / found.distance)));
    return found;
}

double pictureWidth(const EditorModel& model, double height) {
    const QSize size = model.sourceSize();
    return size.height() > 0 ? height * size.width() / size.height() : height;
}

} // namespace

void TimelineLayer::showSlots() {
    if (!film || !shown || !shown->editor() || !(width() > 0)) return;
    const Slots found =
        slotsOf(shown->scale(), pictureWidth(*shown->editor(), shown->row(Zone::Film).height));
    film->show(found.level, found.first, found.last);
    Q_EMIT busyChanged();
}

bool TimelineLayer::busy() const {
    if (!film || !shown || !shown->editor()) return false;
    if (sound && !sound->complete()) return true;
    const Slots found =
        slotsOf(shown->scale(), pictureWidth(*shown->editor(), shown->row(Zone::Film).height));
    return !film->complete(found.level, found.first, found.last);
}

double TimelineLayer::slowestPaint() {
    return std::exchange(slowest, 0);
}

double TimelineLayer::top() const {
    switch (part) {
    case Part::Ruler:
        return shown->row(Zone::Ruler).y;
    case Part::Film:
        return shown->row(Zone::Film).y;
    case Part::Lanes:
        return shown->row(Zone::Speed).y;
    }
    return 0;
}

void TimelineLayer::paint(QPainter* painter) {
    if (!shown || !shown->editor()) return;
    QElapsedTimer clock;
    clock.start();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->setFont(font);
    painter->translate(0, -top());
    switch (part) {
    case Part::Ruler:
        paintRuler(*painter);
        break;
    case Part::Film:
        paintFilm(*painter);
        break;
    case Part::Lanes:
        paintLanes(*painter);
        break;
    }
    slowest = std::max(slowest, static_cast<double>(clock.nsecsElapsed()) / 1e6);
}

void TimelineLayer::paintRuler(QPainter& painter) const {
    const TimelineScale& scale = shown->scale();
    const auto row = shown->row(Zone::Ruler);
    const double step = scale.labelStep();
    const QFontMetricsF metrics(font);
    for (const auto& tick : scale.ticks(-100, width() + 100)) {
        const double x = std::round(scale.x(tick.time) * ratio()) / ratio();
        painter.setPen(QPen(tick.major ? mixed(line, secondary, 0.5) : line, 1));
        painter.drawLine(QPointF(x + 0.5, row.bottom() - (tick.major ? 7 : 4)),
                         QPointF(x + 0.5, row.bottom() - 1));
        if (!tick.major) continue;
        const QString label = timeText(tick.time, step);
        if (x + 5 + metrics.horizontalAdvance(label) > width()) continue;
        painter.setPen(secondary);
        // Labels stand to the right of their mark, so that the first is never cut off.
        painter.drawText(QPointF(x + 5, row.bottom() - 8), label);
    }
}

void TimelineLayer::paintFilm(QPainter& painter) {
    const EditorModel& model = *shown->editor();
    const auto rect = [this](Zone zone) {
        const auto row = shown->row(zone);
        return QRectF(0, row.y, width(), row.height);
    };
    const TimelineScale& scale = shown->scale();
    const QRectF pictures = rect(Zone::Film);

    // The pieces of the film, each with corners of its own; what was removed shows between them, dimmed.
    painter.save();
    QPainterPath whole;
    whole.addRoundedRect(
        QRectF(scale.x(0), pictures.y(), scale.x(scale.duration) - scale.x(0), pictures.height()),
        pieceRadius, pieceRadius);
    painter.fillPath(whole, mixed(surface, line, 0.6));
    painter.setClipPath(whole);
    paintPictures(painter, pictures);
    painter.restore();

    if (model.hasSound()) paintSound(painter, rect(Zone::Sound));
    paintActivity(painter, rect(Zone::Activity));
    paintRemoved(painter, pictures);
    paintEnds(painter, pictures);
}

void TimelineLayer::paintPictures(QPainter& painter, const QRectF& row) const {
    if (!film) return;
    const EditorModel& model = *shown->editor();
    const TimelineScale& scale = shown->scale();
    const Slots found = slotsOf(scale, pictureWidth(model, row.height()));
    const QColor seam = withAlpha(background, 0.35);
    for (qint64 slot = found.first; slot <= found.last; ++slot) {
        const double left = scale.x(static_cast<double>(slot) * found.distance);
        const double right = scale.x(static_cast<double>(slot + 1) * found.distance);
        const QImage* picture = film->picture(found.level, slot);
        if (!picture) picture = film->standIn(found.level, slot);
        if (picture && picture->height() > 0) {
            // The middle of the picture, as wide as the slot, pixel on pixel.
            const double factor = picture->height() / row.height();
            const double shownWidth =
                std::min((right - left) * factor, static_cast<double>(picture->width()));
            const QRectF from((picture->width() - shownWidth) / 2, 0, shownWidth, picture->height());
            painter.drawImage(QRectF(left, row.y(), right - left, row.height()), *picture, from);
        }
        painter.fillRect(QRectF(left, row.y(), 1, row.height()), seam);
    }
}

void TimelineLayer::paintSound(QPainter& painter, const QRectF& row) const {
    if (!sound) return;
    const TimelineScale& scale = shown->scale();
    const double middle = row.center().y();
    const double reach = row.height() / 2 - 2;
    // Quiet speech is as legible as loud speech: what is loudest fills the row.
    const double gain = sound->highest() > 0.02 ? 1 / sound->highest() : 1;
    const double end = std::min(width(), scale.x(std::min(sound->known(), scale.duration)));
    const double step = 2;
    QVector<QLineF> lines;
    for (double x = std::max(scale.x(0), std::floor(0.0)); x < end; x += step) {
        const double peak = std::sqrt(std::min(1.0, sound->peak(scale.time(x), scale.time(x + step)) * gain));
        const double half = std::max(0.5, peak * reach);
        lines.append(QLineF(x + 0.5, middle - half, x + 0.5, middle + half));
    }
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setPen(QPen(mixed(surface, secondary, 0.75), 1));
    painter.drawLines(lines);
    painter.restore();
}

void TimelineLayer::paintActivity(QPainter& painter, const QRectF& row) const {
    const EditorModel& model = *shown->editor();
    const TimelineScale& scale = shown->scale();
    const std::vector<ActivitySample>& samples = model.recording().samples;
    const double base = std::floor(row.bottom()) - 2;
    const double reach = row.height() - 4;
    const double left = std::max(scale.x(0), 0.0);
    const double right = std::min(scale.x(scale.duration), width());
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(QRectF(left, base, std::max(0.0, right - left), 1), line);

    auto sample = std::lower_bound(samples.begin(), samples.end(), scale.time(left),
                                   [](const ActivitySample& each, double time) { return each.t < time; });
    const QColor quiet = mixed(surface, secondary, 0.5);
    constexpr double step = 2;
    constexpr double longest = 0.5; // seconds that a sample stands for when the next one stays away
    ActivitySample latest{-longest, 0, std::nullopt};
    if (sample != samples.begin()) latest = *std::prev(sample);
    for (double x = std::floor(left); x < right; x += step) {
        const double end = scale.time(x + step);
        double energy = scale.time(x) - latest.t < longest ? latest.energy : 0;
        if (sample != samples.end() && sample->t < end) energy = 0;
        for (; sample != samples.end() && sample->t < end; ++sample) {
            energy = std::max(energy, sample->energy);
            latest = *sample;
        }
        // Small changes matter most: a typed letter is a thousandth of the screen.
        const double height = std::round(reach * std::min(1.0, std::pow(energy, 0.3)));
        if (height >= 1) painter.fillRect(QRectF(x, base - height, step, height), quiet);
    }
    painter.restore();

    if (!model.recording().log) return;
    const std::vector<InputLog::Event>& events = model.recording().log->events;
    auto event = std::lower_bound(events.begin(), events.end(), scale.time(-8.0),
                                  [](const InputLog::Event& each, double time) { return each.t < time; });
    double last = -1e9;
    painter.setPen(Qt::NoPen);
    painter.setBrush(accent);
    for (; event != events.end(); ++event) {
        if (event->kind != InputLog::Event::Kind::click && event->kind != InputLog::Event::Kind::rightClick)
            continue;
        const double x = scale.x(event->t);
        if (x > width() + 8) break;
        if (x - last < clickPixels) continue;
        last = x;
        painter.drawEllipse(QPointF(x, base + 0.5), 2.5, 2.5);
    }
}

void TimelineLayer::paintRemoved(QPainter& painter, const QRectF& row) const {
    const EditorModel& model = *shown->editor();
    const TimelineScale& scale = shown->scale();
    const double bottom = shown->row(Zone::Activity).bottom();
    for (const TimeRange& range : model.project().removed(model.duration())) {
        const QRectF area(scale.x(range.start), row.y(), (range.end - range.start) / scale.secondsPerPixel,
                          bottom - row.y());
        if (area.right() < 0 || area.left() > width()) continue;
        const bool trim = range.start <= 0 || range.end >= model.duration() - 1e-6;
        const QRectF pictures(area.x(), row.y(), area.width(), row.height());
        painter.fillRect(area, withAlpha(background, trim ? 0.78 : 0.68));
        if (trim) continue;
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.fillRect(pictures, withAlpha(cut, 0.16));
        hatch(painter, pictures.adjusted(0, 0, 0, 0), withAlpha(cut, 0.62));
        painter.setPen(QPen(cut, 1.5));
        painter.drawLine(pictures.topLeft(), pictures.bottomLeft());
        painter.drawLine(pictures.topRight(), pictures.bottomRight());
        painter.restore();
    }
    // Where the film was split: a gap with two round ends.
    for (const double split : model.project().splits) {
        const double x = scale.x(split);
        if (x < -4 || x > width() + 4) continue;
        painter.fillRect(QRectF(x - 3, row.y(), 6, row.height()), background);
        painter.setPen(Qt::NoPen);
        painter.setBrush(text);
        painter.drawRoundedRect(QRectF(x - 1, row.y(), 2, row.height()), 1, 1);
    }
}

void TimelineLayer::paintEnds(QPainter& painter, const QRectF& row) const {
    const EditorModel& model = *shown->editor();
    const TimelineScale& scale = shown->scale();
    const double from = scale.x(std::max(0.0, model.project().trimStart));
    const double to = scale.x(std::min(model.duration(), model.project().trimEnd.value_or(model.duration())));
    const int over = shown->hoveredTrim();
    // A frame around what is kept, with a handle at each end to take hold of.
    painter.save();
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(withAlpha(text, 0.22), 1));
    painter.drawLine(QPointF(from, row.top() + 0.5), QPointF(to, row.top() + 0.5));
    painter.drawLine(QPointF(from, row.bottom() - 0.5), QPointF(to, row.bottom() - 0.5));
    for (const bool left : {true, false}) {
        const QRectF handle(left ? from - 9 : to, row.y(), 9, row.height());
        if (handle.right() < 0 || handle.left() > width()) continue;
        QPainterPath shape;
        shape.setFillRule(Qt::WindingFill);
        shape.addRoundedRect(handle, 4, 4);
        shape.addRect(left ? handle.adjusted(4, 0, 0, 0) : handle.adjusted(0, 0, -4, 0));
        const bool hot = over == (left ? -1 : 1);
        painter.fillPath(shape, hot ? text : mixed(secondary, surface, 0.25));
        painter.setPen(Qt::NoPen);
        painter.setBrush(surface);
        painter.drawRoundedRect(QRectF(handle.center().x() - 1, handle.center().y() - 8, 2, 16), 1, 1);
    }
    painter.restore();
}

void TimelineLayer::paintLanes(QPainter& painter) const {
    paintLane(painter, Zone::Speed);
    paintLane(painter, Zone::Zoom);
}

void TimelineLayer::paintLane(QPainter& painter, Zone lane) const {
    const EditorModel& model = *shown->editor();
    const TimelineScale& scale = shown->scale();
    const auto row = shown->row(lane);
    const double left = std::max(scale.x(0), -10.0);
    const double right = std::min(scale.x(scale.duration), width() + 10);
    QPainterPath ground;
    ground.addRoundedRect(QRectF(left, row.y, std::max(right - left, 0.0), row.height), blockRadius,
                          blockRadius);
    painter.fillPath(ground, mixed(surface, line, 0.32));

    const QColor color = lane == Zone::Speed ? speed : zoom;
    const auto selection = model.selection();
    const auto rectOf = [&](double start, double end) {
        const double x = scale.x(start);
        return QRectF(x, row.y + 1, std::max((end - start) / scale.secondsPerPixel, 4.0), row.height - 2);
    };
    bool any = false;
    if (lane == Zone::Speed) {
        const auto* selected = std::get_if<EditorModel::Selection::Speed>(&selection);
        for (const SpeedBlock& block : model.speedBlocks()) {
            any = true;
            const QRectF rect = rectOf(block.start, block.end);
            if (rect.right() < 0 || rect.left() > width()) continue;
            const double seconds = block.end - block.start;
            paintBlock(painter, rect, color, TimelineController::speedLabel(block.speed, seconds),
                       speedText(block.speed), selected && selected->id == block.id,
                       shown->hoveredBlock() == block.id, 0);
        }
    } else {
        const auto* selected = std::get_if<EditorModel::Selection::Zoom>(&selection);
        for (const ZoomBlock& block : model.zoomBlocks()) {
            any = true;
            const QRectF rect = rectOf(block.start, block.end);
            if (rect.right() < 0 || rect.left() > width()) continue;
            const bool chosen = selected && selected->id == block.id;
            const bool pictured = rect.width() > 48;
            paintBlock(painter, rect, color, speedText(std::round(block.zoom * 10) / 10),
                       rect.width() > 40 ? speedText(std::round(block.zoom * 10) / 10) : QString(), chosen,
                       shown->hoveredBlock() == block.id, pictured ? 29 : 0);
            if (!pictured) continue;
            // A small picture of where the camera looks.
            const double x = std::clamp(rect.left() + 12, 12.0, rect.right() - 36);
            const QRectF frame(x, rect.center().y() - 6.5, 22, 13);
            const QColor ink = chosen ? inkOnBlock : color;
            painter.setPen(QPen(withAlpha(ink, 0.55), 1));
            painter.setBrush(Qt::NoBrush);
            painter.drawRoundedRect(frame.adjusted(0.5, 0.5, -0.5, -0.5), 2, 2);
            const double w = frame.width() / std::max(block.zoom, 1.0);
            const double h = frame.height() / std::max(block.zoom, 1.0);
            const double cx = std::clamp(frame.left() + block.x * frame.width(), frame.left() + w / 2,
                                         frame.right() - w / 2);
            const double cy = std::clamp(frame.top() + block.y * frame.height(), frame.top() + h / 2,
                                         frame.bottom() - h / 2);
            painter.setPen(Qt::NoPen);
            painter.setBrush(ink);
            painter.drawRoundedRect(QRectF(cx - w / 2, cy - h / 2, w, h).adjusted(1.5, 1.5, -1.5, -1.5), 1,
                                    1);
        }
    }
    if (const auto draft = shown->draft(); draft && draft->lane == lane) {
        any = true;
        const QRectF rect = rectOf(draft->range.start, draft->range.end);
        QPainterPath shape;
        shape.addRoundedRect(rect.adjusted(0.5, 0.5, -0.5, -0.5), blockRadius, blockRadius);
        painter.fillPath(shape, withAlpha(color, 0.25));
        painter.strokePath(shape, QPen(color, 1, Qt::DashLine));
    }
    if (!any) {
        painter.setPen(mixed(secondary, surface, 0.15));
        painter.drawText(QRectF(scale.x(0) + 12, row.y, width() - 40, row.height),
                         Qt::AlignVCenter | Qt::AlignLeft, lane == Zone::Speed ? speedHint : zoomHint);
    }
}

void TimelineLayer::paintBlock(QPainter& painter, const QRectF& block, const QColor& color,
                               const QString& full, const QString& brief, bool selected, bool hovered,
                               double indent) const {
    // Neighbours that touch stay two blocks to the eye.
    const QRectF body = block.width() > 8 ? block.adjusted(0.5, 0, -0.5, 0) : block;
    const double radius = std::min(blockRadius - 1, body.width() / 2);
    QPainterPath shape;
    shape.addRoundedRect(body.adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter.fillPath(shape, selected ? color : mixed(surface, color, hovered ? 0.34 : 0.24));
    painter.strokePath(shape, QPen(selected ? color : mixed(surface, color, 0.72), 1));

    const QColor ink = selected ? inkOnBlock : mixed(text, color, 0.25);
    if (selected || hovered) {
        // The handle pair.
        painter.setPen(Qt::NoPen);
        painter.setBrush(selected ? ink : color);
        if (body.width() > 22)
            for (const double x : {body.left() + 4.5, body.right() - 4.5 - gripWidth + 0.5})
                painter.drawRoundedRect(QRectF(x, body.center().y() - 6, gripWidth - 0.5, 12), 1.2, 1.2);
    }
    // The label stays in view as long as the block does.
    const double left = std::max(body.left(), 0.0);
    const double right = std::min(body.right(), width());
    const double room = right - left - 22 - indent;
    const QFontMetricsF metrics(painter.font());
    QString label = full;
    if (metrics.horizontalAdvance(label) > room) label = brief;
    const bool roomy = metrics.horizontalAdvance(label) <= room;
    // Where there is little room it goes without margins, unless the handles stand there.
    if (label.isEmpty() || (!roomy && (selected || hovered || metrics.horizontalAdvance(label) > room + 8)))
        return;
    painter.setPen(ink);
    const QRectF place = roomy ? QRectF(left + 12 + indent, body.y(), room, body.height())
                               : QRectF(left + indent, body.y(), right - left - indent, body.height());
    painter.drawText(place, Qt::AlignVCenter | (roomy ? Qt::AlignLeft : Qt::AlignHCenter), label);
}

} // namespace OmbrelRecord
