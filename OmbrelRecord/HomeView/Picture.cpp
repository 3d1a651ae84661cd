#include "OmbrelRecord/HomeView/Picture.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtQuick/QQuickWindow>
#include <QtQuick/QSGImageNode>

namespace OmbrelRecord {

Picture::Picture(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
}

void Picture::setApp(QObject* app) {
    if (app == model) return;
    model = qobject_cast<AppModel*>(app);
    fetch();
}

void Picture::setName(const QString& name) {
    if (name == shownName) return;
    shownName = name;
    fetch();
}

void Picture::setRevision(int revision) {
    if (revision == shownRevision) return;
    shownRevision = revision;
    fetch();
}

void Picture::setRadius(qreal radius) {
    corner = radius;
    drawAgain();
    Q_EMIT changed();
}

void Picture::setMirrored(bool mirrored) {
    asMirror = mirrored;
    drawAgain();
    Q_EMIT changed();
}

void Picture::setWhole(bool whole) {
    complete = whole;
    drawAgain();
    Q_EMIT changed();
}

void Picture::fetch() {
    const qreal before = aspect();
    image = model && !shownName.isEmpty() ? model->image(shownName) : QImage();
    drawAgain();
    Q_EMIT changed();
    if (aspect() != before) Q_EMIT pictureChanged();
}

void Picture::drawAgain() {
    stale = true;
    update();
}

void Picture::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickItem::geometryChange(now, before);
    if (now.size() != before.size()) drawAgain();
}

void Picture::itemChange(ItemChange change, const ItemChangeData& value) {
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange) drawAgain();
    QQuickItem::itemChange(change, value);
}

QSGNode* Picture::updatePaintNode(QSGNode* old, UpdatePaintNodeData*) {
    auto* node = static_cast<QSGImageNode*>(old);
    const qreal ratio = window()->effectiveDevicePixelRatio();
    const QSize pixels = (size() * ratio).toSize();
    if (image.isNull() || pixels.isEmpty()) {
        delete node;
        return nullptr;
    }
    if (!node) {
        node = window()->createImageNode();
        node->setOwnsTexture(true);
        stale = true;
    }
    if (stale) {
        QImage drawn(pixels, QImage::Format_ARGB32_Premultiplied);
        drawn.fill(Qt::transparent);
        const QSizeF scaled =
            QSizeF(image.size())
                .scaled(QSizeF(pixels), complete ? Qt::KeepAspectRatio : Qt::KeepAspectRatioByExpanding);
        const QRectF place((pixels.width() - scaled.width()) / 2, (pixels.height() - scaled.height()) / 2,
                           scaled.width(), scaled.height());
        QPainter painter(&drawn);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        QPainterPath shape;
        shape.addRoundedRect(place & QRectF(drawn.rect()), corner * ratio, corner * ratio);
        // A brush, not a clip: its edge is smooth.
        QBrush brush(image.scaled(place.size().toSize(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                         .mirrored(asMirror, false));
        brush.setTransform(QTransform::fromTranslate(place.x(), place.y()));
        painter.fillPath(shape, brush);
        painter.end();
        node->setTexture(window()->createTextureFromImage(drawn, QQuickWindow::TextureHasAlphaChannel));
        node->setFiltering(QSGTexture::Linear);
        stale = false;
    }
    node->setRect(boundingRect());
    return node;
}

} // namespace OmbrelRecord
