#include "OmbrelRecord/EditorModel/PreviewPicture.h"

namespace OmbrelRecord {

using RecordCore::NRect;

namespace {

/// The point of `to` that lies as `point` lies in `from`.
QPointF carried(const QPointF& point, const QRectF& from, const QRectF& to) {
    const double x = from.width() > 0 ? (point.x() - from.x()) / from.width() : 0;
    const double y = from.height() > 0 ? (point.y() - from.y()) / from.height() : 0;
    return {to.x() + x * to.width(), to.y() + y * to.height()};
}

QRectF rectangle(const NRect& rect) {
    return {rect.x, rect.y, rect.w, rect.h};
}

const QRectF whole(0, 0, 1, 1);

} // namespace

QPointF PreviewPicture::recordingPoint(const QPointF& picture) const {
    return carried(picture, place.window, rectangle(place.view));
}

QPointF PreviewPicture::picturePoint(const QPointF& recording) const {
    return carried(recording, rectangle(place.view), place.window);
}

QPointF PreviewPicture::uncropped(const QPointF& recording) const {
    return place.crop ? carried(recording, whole, rectangle(*place.crop)) : recording;
}

QPointF PreviewPicture::cropped(const QPointF& point) const {
    return place.crop ? carried(point, rectangle(*place.crop), whole) : point;
}

void PreviewPicture::setViewSize(const QSize& pixels) {
    if (pixels == room) return;
    room = pixels;
    Q_EMIT viewSizeChanged();
}

void PreviewPicture::show(const QImage& image, double seconds, bool exact, const Placement& placement) {
    const bool fresh = image.cacheKey() != shown.cacheKey();
    shown = image;
    time = seconds;
    isExact = exact;
    place = placement;
    Q_EMIT placed();
    if (fresh) Q_EMIT changed();
}

void PreviewPicture::setAspect(double aspect) {
    if (!(aspect > 0) || aspect == filmAspect) return;
    filmAspect = aspect;
    Q_EMIT aspectChanged();
}

} // namespace OmbrelRecord
