#include "OmbrelRecord/EditorView/LookPicture.h"

#include "OmbrelRecord/Theme/PictureNode.h"

#include <QtQuick/QQuickWindow>

namespace OmbrelRecord {

LookPicture::LookPicture(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
    connect(this, &LookPicture::changed, this, &LookPicture::drawAgain);
}

void LookPicture::setPictures(LookPictures* pictures) {
    if (pictures == source) return;
    if (source) disconnect(source, nullptr, this, nullptr);
    source = pictures;
    if (source)
        connect(source, &LookPictures::pictureChanged, this, [this](int row) {
            if (row == shownRow) Q_EMIT changed();
        });
    Q_EMIT changed();
}

void LookPicture::setRow(int row) {
    if (row == shownRow) return;
    shownRow = row;
    Q_EMIT changed();
}

void LookPicture::drawAgain() {
    stale = true;
    update();
}

void LookPicture::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickItem::geometryChange(now, before);
    if (now.size() != before.size()) drawAgain();
}

void LookPicture::itemChange(ItemChange change, const ItemChangeData& value) {
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange) drawAgain();
    QQuickItem::itemChange(change, value);
}

QSGNode* LookPicture::updatePaintNode(QSGNode* old, UpdatePaintNodeData*) {
    return PictureNode::show(*this, old, boundingRect(), stale, [this] {
        const double ratio = window()->effectiveDevicePixelRatio();
        const QImage picture = source ? source->picture(shownRow) : QImage();
        return PictureNode::fitted(picture, (size() * ratio).toSize(), {.radius = corner * ratio});
    });
}

} // namespace OmbrelRecord
