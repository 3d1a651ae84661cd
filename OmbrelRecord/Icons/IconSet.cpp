#include "OmbrelRecord/Icons/IconSet.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtCore/QXmlStreamReader>
#include <QtGui/QPainter>
#include <QtGui/QPen>
#include <QtGui/QPixmap>
#include <algorithm>
#include <array>
#include <cmath>
#include <mutex>
#include <numbers>
#include <optional>

// In a static library nobody else asks for the resources; outside of every namespace, as Qt demands.
static void loadIconResources() {
    Q_INIT_RESOURCE(icons);
}

namespace OmbrelRecord {

namespace {

/// Reads commands and numbers of path data one after the other.
class PathReader {
public:
    explicit PathReader(QStringView text) : text(text) {}

    std::optional<QPainterPath> path() {
        QPainterPath made;
        made.setFillRule(Qt::WindingFill);
        QPointF current;
        QChar command;
        bool begun = false;
        for (skip(); at < text.size(); skip()) {
            if (text[at].isLetter())
                command = text[at++];
            else if (command == u'M')
                command = u'L';
            else if (command.isNull() || command == u'Z')
                return std::nullopt;
            if (!begun && command != u'M') return std::nullopt;
            begun = true;

            std::array<double, 7> n{};
            const auto read = [&](std::size_t count) {
                for (std::size_t i = 0; i < count; ++i)
                    if (!number(n[i])) return false;
                return true;
            };
            switch (command.unicode()) {
            case 'M':
                if (!read(2)) return std::nullopt;
                made.moveTo(n[0], n[1]);
                break;
            case 'L':
                if (!read(2)) return std::nullopt;
                made.lineTo(n[0], n[1]);
                break;
            case 'H':
                if (!read(1)) return std::nullopt;
                made.lineTo(n[0], current.y());
                break;
            case 'V':
                if (!read(1)) return std::nullopt;
                made.lineTo(current.x(), n[0]);
                break;
            case 'C':
                if (!read(6)) return std::nullopt;
                made.cubicTo(n[0], n[1], n[2], n[3], n[4], n[5]);
                break;
            case 'A':
                if (!read(7)) return std::nullopt;
                if (n[0] <= 0 || n[0] != n[1]) return std::nullopt;
                arc(made, current, n[0], n[3] != 0, n[4] != 0, {n[5], n[6]});
                break;
            case 'Z':
                made.closeSubpath();
                break;
            default:
                return std::nullopt;
            }
            current = made.currentPosition();
        }
        if (made.isEmpty()) return std::nullopt;
        return made;
    }

private:
    void skip() {
        while (at < text.size() && (text[at].isSpace() || text[at] == u','))
            ++at;
    }

    bool number(double& out) {
        skip();
        const qsizetype start = at;
        if (at < text.size() && text[at] == u'-') ++at;
        while (at < text.size() && (text[at].isDigit() || text[at] == u'.'))
            ++at;
        bool fine = false;
        out = text.mid(start, at - start).toDouble(&fine);
        return fine;
    }

    /// An arc of a circle between two points. Centre and angles after SVG 1.1, appendix F.6.5; the radius is
    /// raised to half the distance where it is smaller.
    static void arc(QPainterPath& path, QPointF from, double radius, bool large, bool sweep, QPointF to) {
        const QPointF half = (to - from) / 2;
        const double distance = std::hypot(half.x(), half.y());
        if (distance <= 0) return;
        const double r = std::max(radius, distance);
        const double away = std::sqrt(std::max(r * r - distance * distance, 0.0)) / distance;
        const double side = large == sweep ? -1 : 1;
        const QPointF center(from.x() + half.x() - side * away * half.y(),
                             from.y() + half.y() + side * away * half.x());
        // Qt counts angles against the clock, and y points down.
        const auto angle = [&](QPointF p) {
            return std::atan2(center.y() - p.y(), p.x() - center.x()) * 180 / std::numbers::pi;
        };
        const double start = angle(from);
        double span = angle(to) - start;
        if (sweep && span > 0) span -= 360;
        if (!sweep && span < 0) span += 360;
        path.arcTo(center.x() - r, center.y() - r, 2 * r, 2 * r, start, span);
    }

    QStringView text;
    qsizetype at = 0;
};

QString fileOf(const QString& name) {
    return QStringLiteral(":/ombrel-record/icons/%1.svg").arg(name);
}

} // namespace

void Icon::paint(QPainter& painter, const QColor& color, double side) const {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(side / grid, side / grid);
    const QPen pen(color, strokeWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
    for (const Part& part : parts) {
        // In one go where a shape is both: a translucent colour must not show the overlap.
        if (part.stroked && part.filled) {
            QPainterPathStroker stroker(pen);
            painter.fillPath(part.path.united(stroker.createStroke(part.path)), color);
        } else if (part.filled) {
            painter.fillPath(part.path, color);
        } else {
            painter.strokePath(part.path, pen);
        }
    }
    painter.restore();
}

QStringList IconSet::names() {
    loadIconResources();
    QStringList found;
    for (const QString& file :
         QDir(QStringLiteral(":/ombrel-record/icons")).entryList(QDir::Files, QDir::Name))
        found.append(file.chopped(4));
    return found;
}

std::shared_ptr<const Icon> IconSet::find(const QString& name) {
    static std::mutex mutex;
    static QHash<QString, std::shared_ptr<const Icon>> kept; // guarded by `mutex`
    const std::scoped_lock lock(mutex);
    if (const auto found = kept.constFind(name); found != kept.constEnd()) return *found;
    loadIconResources();
    QFile file(fileOf(name));
    if (!file.open(QIODevice::ReadOnly)) return nullptr;
    const auto icon = read(file.readAll());
    kept.insert(name, icon);
    return icon;
}

QImage IconSet::draw(const QString& name, const QColor& color, const QSize& pixels) {
    const auto icon = find(name);
    if (!icon || pixels.isEmpty()) return {};
    QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    const int side = std::min(pixels.width(), pixels.height());
    painter.translate((pixels.width() - side) / 2, (pixels.height() - side) / 2); // whole pixels
    icon->paint(painter, color, side);
    return image;
}

QIcon IconSet::application() {
    loadIconResources();
    QIcon icon;
    for (const int size : {16, 24, 32, 48, 64, 128, 256})
        icon.addPixmap(QPixmap::fromImage(
            QImage(QStringLiteral(":/ombrel-record/application/%1.png").arg(size), "PNG")));
    return icon;
}

std::shared_ptr<const Icon> IconSet::read(const QByteArray& svg) {
    auto icon = std::make_shared<Icon>();
    QXmlStreamReader xml(svg);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) continue;
        const QXmlStreamAttributes attributes = xml.attributes();
        if (xml.name() == u"svg") {
            if (attributes.value(QLatin1String("viewBox")) != u"0 0 20 20") return nullptr;
        } else if (xml.name() == u"path") {
            auto path = PathReader(attributes.value(QLatin1String("d"))).path();
            if (!path) return nullptr;
            icon->parts.push_back({std::move(*path), attributes.value(QLatin1String("stroke")) != u"none",
                                   attributes.value(QLatin1String("fill")) == u"currentColor"});
        } else {
            return nullptr;
        }
    }
    return xml.hasError() || icon->parts.empty() ? nullptr : icon;
}

} // namespace OmbrelRecord
