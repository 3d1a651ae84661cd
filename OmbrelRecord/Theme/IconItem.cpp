#include "OmbrelRecord/Theme/IconItem.h"

#include "OmbrelRecord/Icons/IconSet.h"

#include <QtCore/QDebug>
#include <QtQuick/QQuickWindow>
#include <QtQuick/QSGImageNode>
#include <cmath>

namespace OmbrelRecord {

IconItem::IconItem(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
    setImplicitSize(side, side);
}

void IconItem::setName(const QString& name) {
    if (name == shownName) return;
    shownName = name;
    drawAgain();
    Q_EMIT nameChanged();
}

void IconItem::setColor(const QColor& color) {
    if (color == shownColor) return;
    shownColor = color;
    drawAgain();
    Q_EMIT colorChanged();
}

void IconItem::setSize(int size) {
    if (size == side) return;
    side = size;
    setImplicitSize(side, side);
    drawAgain();
    Q_EMIT sizeChanged();
}

void IconItem::drawAgain() {
    stale = true;
    update();
}

void IconItem::itemChange(ItemChange change, const ItemChangeData& value) {
    if (change == ItemDevicePixelRatioHasChanged || change == ItemSceneChange) drawAgain();
    QQuickItem::itemChange(change, value);
}

QSGNode* IconItem::updatePaintNode(QSGNode* old, UpdatePaintNodeData*) {
    auto* node = static_cast<QSGImageNode*>(old);
    if (shownName.isEmpty() || side <= 0) {
        delete node;
        return nullptr;
    }
    if (!node || stale) {
        const qreal ratio = window()->effectiveDevicePixelRatio();
        const int pixels = static_cast<int>(std::lround(side * ratio));
        const QImage image = IconSet::draw(shownName, shownColor, {pixels, pixels});
        if (image.isNull()) {
            qWarning() << "no icon" << shownName;
            delete node;
            return nullptr;
        }
        if (!node) {
            node = window()->createImageNode();
            node->setOwnsTexture(true);
        }
        node->setTexture(window()->createTextureFromImage(image, QQuickWindow::TextureHasAlphaChannel));
        node->setFiltering(QSGTexture::Linear);
        stale = false;
    }
    node->setRect(0, 0, side, side);
    return node;
}

} // namespace OmbrelRecord
