#include "OmbrelRecord/HomeView/Backdrop.h"

#include "OmbrelRecord/AppModel/Images.h"
#include "RecordCore/Rendering/Wallpapers.h"

#include <QtGui/QLinearGradient>
#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtQuick/QQuickWindow>
#include <QtQuick/QSGImageNode>
#include <algorithm>
#include <utility>

namespace OmbrelRecord {

namespace {

QImage wallpaperOf(const std::string& name, QSize size) {
    const auto planes = RecordCore::Wallpapers::draw(name, size.width() & ~1, size.height() & ~1);
    return planes ? imageOf(planes->picture().view()) : QImage();
}

/// A soft shadow under a place: rounded shapes of falling weight, each a little larger than the one before.
/// Its softness hides that it is drawn at a quarter of the size, which takes a sixteenth of the time.
QImage shadowOf(QSize size, const QRectF& place, qreal corner, qreal reach) {
    constexpr int steps = 14;
    constexpr qreal coarse = 4;
    QImage image((QSizeF(size) / coarse).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(1 / coarse, 1 / coarse);
    painter.setPen(Qt::NoPen);
    for (int step = steps; step >= 1; --step) {
        const qreal spread = reach * step / steps;
        const qreal weight = 1 - static_cast<qreal>(step) / (steps + 1);
        painter.setBrush(QColor(0, 0, 0, static_cast<int>(16 * weight)));
        painter.drawRoundedRect(place.adjusted(-spread, -spread, spread, spread).translated(0, reach * 0.35),
                                corner + spread, corner + spread);
    }
    return image;
}

} // namespace

Backdrop::Backdrop(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
}

bool Backdrop::ready() const {
    return drawn == wanted && !asked;
}

void Backdrop::setWallpaper(const QString& wallpaper) {
    if (wallpaper == wanted) return;
    wanted = wallpaper;
    drawAgain();
    Q_EMIT changed();
}

void Backdrop::setRadius(qreal radius) {
    corner = radius;
    drawAgain();
    Q_EMIT changed();
}

void Backdrop::setWindowPlace(const QRectF& place) {
    if (place == hole) return;
    hole = place;
    drawAgain();
    Q_EMIT changed();
}

void Backdrop::setWindowRadius(qreal radius) {
    holeCorner = radius;
    drawAgain();
    Q_EMIT changed();
}

void Backdrop::drawAgain() {
    stale = true;
    request();
    update();
}

void Backdrop::request() {
    if (!seen || asked || wanted.isEmpty() || !QQuickItem::window() || width() < 16 || height() < 16) return;
    const QSize pixels = (size() * QQuickItem::window()->effectiveDevicePixelRatio()).toSize();
    if (drawn == wanted && (!drawing.isNull() && drawing.width() >= pixels.width() - 1)) return;
    if (drawn == wanted && drawing.isNull()) return; // there is none of that name
    asked = true;
    queue.post([this, name = wanted, pixels] {
        QImage image = wallpaperOf(name.toStdString(), pixels);
        QMetaObject::invokeMethod(this, [this, name, image = std::move(image)] {
            asked = false;
            drawing = image;
            drawn = name;
            drawAgain();
            Q_EMIT readyChanged();
        });
    });
}

void Backdrop::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickItem::geometryChange(now, before);
    if (now.size() != before.size()) drawAgain();
}

void Backdrop::itemChange(ItemChange change, const ItemChangeData& value) {
    QQuickItem::itemChange(change, value);
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange) drawAgain();
}

QSGNode* Backdrop::updatePaintNode(QSGNode* old, UpdatePaintNodeData*) {
    // The window's first frame is not to share the processor with the drawing of it. The main thread waits
    // here, whichever this one is.
    if (!std::exchange(seen, true)) QMetaObject::invokeMethod(this, &Backdrop::request, Qt::QueuedConnection);
    auto* node = static_cast<QSGImageNode*>(old);
    QQuickWindow* shownIn = QQuickItem::window();
    const qreal ratio = shownIn->effectiveDevicePixelRatio();
    const QSize pixels = (size() * ratio).toSize();
    if (pixels.isEmpty()) {
        delete node;
        return nullptr;
    }
    if (!node) {
        node = shownIn->createImageNode();
        node->setOwnsTexture(true);
        stale = true;
    }
    if (stale) {
        QImage image(pixels, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        QPainterPath shape;
        shape.addRoundedRect(QRectF(image.rect()), corner * ratio, corner * ratio);
        if (drawing.isNull()) {
            QLinearGradient gradient(0, 0, pixels.width(), pixels.height());
            gradient.setColorAt(0, QColor(0x23263A));
            gradient.setColorAt(1, QColor(0x12131C));
            painter.fillPath(shape, gradient);
        } else {
            QBrush brush(drawing);
            brush.setTransform(QTransform::fromScale(static_cast<qreal>(pixels.width()) / drawing.width(),
                                                     static_cast<qreal>(pixels.height()) / drawing.height()));
            painter.fillPath(shape, brush);
        }
        if (!hole.isEmpty()) {
            const QRectF place(hole.topLeft() * ratio, hole.size() * ratio);
            painter.setClipPath(shape);
            const qreal reach = std::min(place.width(), place.height()) * 0.09;
            painter.drawImage(image.rect(), shadowOf(pixels, place, holeCorner * ratio, reach));
        }
        painter.end();
        node->setTexture(shownIn->createTextureFromImage(image, QQuickWindow::TextureHasAlphaChannel));
        node->setFiltering(QSGTexture::Linear);
        stale = false;
    }
    node->setRect(boundingRect());
    return node;
}

} // namespace OmbrelRecord
