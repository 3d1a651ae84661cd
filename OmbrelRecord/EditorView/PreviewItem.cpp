#include "OmbrelRecord/EditorView/PreviewItem.h"

#include "OmbrelRecord/EditorModel/PreviewPicture.h"
#include "OmbrelRecord/Theme/PictureNode.h"

#include <QtQuick/QQuickWindow>
#include <cmath>
#include <utility>

namespace OmbrelRecord {

PreviewItem::PreviewItem(QQuickItem* parent) : QQuickItem(parent) {
    setFlag(ItemHasContents);
}

void PreviewItem::setEditor(EditorModel* editor) {
    if (model == editor) return;
    if (source) {
        disconnect(source, nullptr, this, nullptr);
        source->setViewSize({});
    }
    model = editor;
    source = model && model->preview() ? model->preview()->picture() : nullptr;
    if (source) {
        connect(source, &PreviewPicture::changed, this, [this] {
            stale = true;
            update();
        });
        // The frame that stood in may turn out to be the right one: another picture does not follow then.
        connect(source, &PreviewPicture::placed, this, [this] {
            if (std::exchange(wasReady, ready()) != wasReady) Q_EMIT readyChanged();
        });
        connect(source, &PreviewPicture::aspectChanged, this, [this] {
            tellSize();
            Q_EMIT pictureChanged();
        });
    }
    stale = true;
    wasReady = ready();
    tellSize();
    update();
    Q_EMIT editorChanged();
    Q_EMIT pictureChanged();
    Q_EMIT readyChanged();
}

bool PreviewItem::ready() const {
    return !source || (!source->image().isNull() && source->exact());
}

QRectF PreviewItem::pictureRect() const {
    const double aspect = source ? source->aspect() : 16.0 / 9;
    const double ratio = window() ? window()->effectiveDevicePixelRatio() : 1;
    const double wide = std::min(width(), height() * aspect) * ratio;
    // Whole device pixels, and as many as the picture has when it was made for this room: else it would be
    // resampled. Its sides are even.
    QSizeF pixels(std::floor(wide), std::floor(wide / aspect));
    if (source && std::abs(source->image().width() - pixels.width()) <= 2 &&
        std::abs(source->image().height() - pixels.height()) <= 2)
        pixels = source->image().size();
    return {std::floor((width() * ratio - pixels.width()) / 2) / ratio,
            std::floor((height() * ratio - pixels.height()) / 2) / ratio, pixels.width() / ratio,
            pixels.height() / ratio};
}

QPointF PreviewItem::recordingPoint(const QPointF& point) const {
    const QRectF rect = pictureRect();
    if (!source || rect.isEmpty()) return {};
    return source->recordingPoint(
        {(point.x() - rect.x()) / rect.width(), (point.y() - rect.y()) / rect.height()});
}

QPointF PreviewItem::itemPoint(const QPointF& recording) const {
    const QRectF rect = pictureRect();
    if (!source) return {};
    const QPointF point = source->picturePoint(recording);
    return {rect.x() + point.x() * rect.width(), rect.y() + point.y() * rect.height()};
}

QPointF PreviewItem::wholePoint(const QPointF& point) const {
    return source ? source->uncropped(recordingPoint(point)) : QPointF();
}

QPointF PreviewItem::itemPointOfWhole(const QPointF& whole) const {
    return source ? itemPoint(source->cropped(whole)) : QPointF();
}

void PreviewItem::tellSize() {
    if (!source) return;
    const double ratio = window() ? window()->effectiveDevicePixelRatio() : 1;
    const bool shows = window() && isVisible() && width() > 0 && height() > 0;
    source->setViewSize(shows ? (QSizeF(width(), height()) * ratio).toSize() : QSize());
}

void PreviewItem::geometryChange(const QRectF& now, const QRectF& before) {
    QQuickItem::geometryChange(now, before);
    tellSize();
    update();
    Q_EMIT pictureChanged();
}

void PreviewItem::itemChange(ItemChange change, const ItemChangeData& value) {
    QQuickItem::itemChange(change, value);
    if (change == ItemSceneChange || change == ItemDevicePixelRatioHasChanged ||
        change == ItemVisibleHasChanged)
        tellSize();
}

QSGNode* PreviewItem::updatePaintNode(QSGNode* old, UpdatePaintNodeData*) {
    return PictureNode::show(*this, old, pictureRect(), stale,
                             [this] { return source ? source->image() : QImage(); });
}

} // namespace OmbrelRecord
