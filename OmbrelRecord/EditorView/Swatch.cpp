#include "OmbrelRecord/EditorView/Swatch.h"

#include "OmbrelRecord/AppModel/Images.h"
#include "OmbrelRecord/AppModel/SerialQueue.h"
#include "RecordCore/Model/Backdrop.h"
#include "RecordCore/Rendering/Wallpapers.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QHash>
#include <QtCore/QPointer>
#include <QtCore/QSet>
#include <QtGui/QImageReader>
#include <QtGui/QLinearGradient>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtGui/QRadialGradient>
#include <atomic>

namespace OmbrelRecord {

using namespace RecordCore;

namespace {

constexpr QSize drawnSize(320, 200);

QImage drawWallpaper(const std::string& name) {
    const auto planes = Wallpapers::draw(name, drawnSize.width(), drawnSize.height());
    return planes ? imageOf(planes->picture().view()) : QImage();
}

QImage readFile(const QString& file) {
    QImageReader reader(file);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.isValid()) reader.setScaledSize(size.scaled(drawnSize * 2, Qt::KeepAspectRatioByExpanding));
    return reader.read();
}

/// Draws the pictures and keeps them for as long as the application runs.
class Maker : public QObject {
public:
    static Maker& instance() {
        static QPointer<Maker> maker;
        if (!maker) maker = new Maker(QCoreApplication::instance());
        return *maker;
    }

    using QObject::QObject;
    ~Maker() override { ending = true; }

    /// Null while it is being made; `swatch` is drawn again when it is there.
    QImage find(const QString& key, QQuickItem* swatch) {
        if (const auto known = pictures.constFind(key); known != pictures.constEnd()) return *known;
        waiting[key].append(swatch);
        if (asked.contains(key)) return {};
        asked.insert(key);
        queue.post([this, key] {
            if (ending) return;
            QImage picture = key.startsWith(QLatin1Char('w')) ? drawWallpaper(key.mid(1).toStdString())
                                                              : readFile(key.mid(1));
            QMetaObject::invokeMethod(this, [this, key, picture] {
                pictures.insert(key, picture);
                for (const auto& item : waiting.take(key))
                    if (item) item->update();
            });
        });
        return {};
    }
    bool settled() const { return asked.size() == pictures.size(); }

private:
    QHash<QString, QImage> pictures;
    QSet<QString> asked;
    QHash<QString, QList<QPointer<QQuickItem>>> waiting;
    std::atomic<bool> ending{false};
    SerialQueue queue;
};

QString text(std::string_view word) {
    return QString::fromUtf8(word.data(), static_cast<qsizetype>(word.size()));
}

QColor colorOf(const Rgb& rgb) {
    return QColor::fromRgbF(static_cast<float>(rgb.r), static_cast<float>(rgb.g), static_cast<float>(rgb.b));
}

} // namespace

Swatch::Swatch(QQuickItem* parent) : QQuickPaintedItem(parent) {
    setAntialiasing(true);
    connect(this, &Swatch::changed, this, [this] { update(); });
}

QVariantList Swatch::wallpapers() {
    QVariantList list;
    for (const Wallpapers::Entry& each : Wallpapers::all())
        list.append(QVariantMap{{QStringLiteral("name"), text(each.name)},
                                {QStringLiteral("title"), text(each.title)},
                                {QStringLiteral("family"), text(each.family)}});
    return list;
}

QVariantList Swatch::backdrops() {
    QVariantList list;
    for (const std::string_view each : Backdrop::names()) {
        const QString name = text(each);
        list.append(QVariantMap{{QStringLiteral("name"), name},
                                {QStringLiteral("title"), name.at(0).toUpper() + name.mid(1)}});
    }
    return list;
}

bool Swatch::settled() {
    return Maker::instance().settled();
}

void Swatch::paint(QPainter* painter) {
    const QRectF area = boundingRect();
    QPainterPath shape;
    shape.addRoundedRect(area.adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    if (!wallpaper.isEmpty() || !file.isEmpty()) {
        const QImage picture = Maker::instance().find(
            wallpaper.isEmpty() ? QLatin1Char('f') + file : QLatin1Char('w') + wallpaper, this);
        if (picture.isNull()) {
            painter->fillPath(shape, line);
        } else {
            const QSizeF shown = area.size().scaled(picture.size(), Qt::KeepAspectRatio);
            const QRectF from(
                QPointF((picture.width() - shown.width()) / 2, (picture.height() - shown.height()) / 2),
                shown);
            QBrush brush(picture.copy(from.toAlignedRect() & picture.rect())
                             .scaled((area.size() * painter->device()->devicePixelRatioF()).toSize(),
                                     Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
            const double scale = 1 / painter->device()->devicePixelRatioF();
            brush.setTransform(QTransform::fromScale(scale, scale));
            painter->fillPath(shape, brush);
        }
    } else if (!backdrop.isEmpty()) {
        const Backdrop preset = Backdrop::preset(backdrop.toStdString()).value_or(Backdrop::standard());
        QLinearGradient gradient(area.topLeft(), area.bottomLeft());
        gradient.setColorAt(0, colorOf(preset.top));
        gradient.setColorAt(1, colorOf(preset.bottom));
        painter->fillPath(shape, gradient);
        QRadialGradient glow(QPointF(area.center().x(), area.top() + area.height() * 0.2),
                             area.width() * 0.6);
        QColor light = colorOf(preset.glow);
        light.setAlphaF(0.28F);
        glow.setColorAt(0, light);
        light.setAlphaF(0);
        glow.setColorAt(1, light);
        painter->fillPath(shape, glow);
    } else {
        painter->fillPath(shape, QColor(solid));
    }
    painter->strokePath(shape, QPen(line, 1));
}

} // namespace OmbrelRecord
