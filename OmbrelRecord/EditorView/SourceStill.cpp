#include "OmbrelRecord/EditorView/SourceStill.h"

#include <QtGui/QPainter>

namespace OmbrelRecord {

namespace {

/// Enough to see where one aims; larger ones only cost time.
constexpr int tallest = 1080;

} // namespace

SourceStill::SourceStill(QQuickItem* parent) : QQuickPaintedItem(parent) {
    connect(this, &SourceStill::regionChanged, this, [this] { update(); });
}

void SourceStill::setEditor(EditorModel* editor) {
    if (model == editor) return;
    model = editor;
    picture = {};
    grabber.reset();
    if (model && model->media()) {
        grabber =
            std::make_unique<FrameGrabber>(*model->media(), model->recording().video, model->disposal());
        connect(grabber.get(), &FrameGrabber::grabbed, this, [this](quint64, const QImage& image) {
            if (image.isNull()) return;
            picture = image;
            Q_EMIT readyChanged();
            update();
        });
    }
    ask();
    Q_EMIT editorChanged();
}

void SourceStill::setTime(double seconds) {
    if (moment == seconds) return;
    moment = seconds;
    ask();
    Q_EMIT timeChanged();
}

void SourceStill::ask() {
    if (grabber) grabber->want({{1, moment, tallest}});
}

void SourceStill::paint(QPainter* painter) {
    const QRectF area = boundingRect();
    if (picture.isNull()) {
        painter->fillRect(area, Qt::black);
        return;
    }
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->drawImage(area, picture,
                       QRectF(region.x() * picture.width(), region.y() * picture.height(),
                              region.width() * picture.width(), region.height() * picture.height()));
}

} // namespace OmbrelRecord
