#include "OmbrelRecord/Theme/PictureNode.h"

#include <QtGui/QPainter>
#include <QtGui/QPainterPath>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>
#include <QtQuick/QSGImageNode>

namespace OmbrelRecord::PictureNode {

QSGNode* show(QQuickItem& item, QSGNode* old, const QRectF& rect, bool& stale,
              const std::function<QImage()>& make) {
    auto* node = static_cast<QSGImageNode*>(old);
    if (stale || !node) {
        const QImage picture = make();
        if (picture.isNull()) {
            delete node;
            return nullptr;
        }
        if (!node) {
            node = item.window()->createImageNode();
            node->setOwnsTexture(true);
            node->setFiltering(QSGTexture::Linear);
        }
        node->setTexture(item.window()->createTextureFromImage(
            picture, picture.hasAlphaChannel() ? QQuickWindow::TextureHasAlphaChannel
                                               : QQuickWindow::TextureIsOpaque));
        stale = false;
    }
    node->setRect(rect);
    return node;
}

QImage fitted(const QImage& picture, const QSize& pixels, const Fit& fit) {
    if (picture.isNull() || pixels.isEmpty()) return {};
    QImage drawn(pixels, QImage::Format_ARGB32_Premultiplied);
    drawn.fill(Qt::transparent);
    const QSizeF scaled =
        QSizeF(picture.size())
            .scaled(QSizeF(pixels), fit.whole ? Qt::KeepAspectRatio : Qt::KeepAspectRatioByExpanding);
    const QRectF place((pixels.width() - scaled.width()) / 2, (pixels.height() - scaled.height()) / 2,
                       scaled.width(), scaled.height());
    QPainter painter(&drawn);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    QPainterPath shape;
    shape.addRoundedRect(place & QRectF(drawn.rect()), fit.radius, fit.radius);
    // A brush, not a clip: its edge is smooth.
    QBrush brush(picture.scaled(place.size().toSize(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
                     .mirrored(fit.mirrored, false));
    brush.setTransform(QTransform::fromTranslate(place.x(), place.y()));
    painter.fillPath(shape, brush);
    return drawn;
}

} // namespace OmbrelRecord::PictureNode
