#include "OmbrelRecord/HomeView/Picture.h"

#include "OmbrelRecord/Theme/PictureNode.h"

#include <QtQuick/QQuickWindow>

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
    return PictureNode::show(*this, old, boundingRect(), stale, [this] {
        const qreal ratio = window()->effectiveDevicePixelRatio();
        return PictureNode::fitted(image, (size() * ratio).toSize(),
                                   {.radius = corner * ratio, .whole = complete, .mirrored = asMirror});
    });
}

} // namespace OmbrelRecord
