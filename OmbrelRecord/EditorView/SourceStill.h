#pragma once

#include "OmbrelRecord/EditorModel/EditorModel.h"
#include "OmbrelRecord/EditorModel/FrameGrabber.h"

#include <QtCore/QPointer>
#include <QtCore/QRectF>
#include <QtGui/QImage>
#include <QtQml/qqmlregistration.h>
#include <QtQuick/QQuickPaintedItem>
#include <memory>

namespace OmbrelRecord {

/// The recording itself at one moment, as it was recorded: what crop and zooms are aimed on. Decoded on a
/// thread of its own. Main thread.
class SourceStill : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(OmbrelRecord::EditorModel* editor READ editor WRITE setEditor NOTIFY editorChanged)
    /// Source seconds.
    Q_PROPERTY(double time READ time WRITE setTime NOTIFY timeChanged)
    /// The part that shows, normalised.
    Q_PROPERTY(QRectF region MEMBER region NOTIFY regionChanged)
    Q_PROPERTY(bool ready READ ready NOTIFY readyChanged)

public:
    explicit SourceStill(QQuickItem* parent = nullptr);

    EditorModel* editor() const { return model; }
    void setEditor(EditorModel* editor);
    double time() const { return moment; }
    void setTime(double seconds);
    bool ready() const { return !picture.isNull(); }

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void editorChanged();
    void timeChanged();
    void regionChanged();
    void readyChanged();

private:
    void ask();

    QPointer<EditorModel> model;
    double moment = 0;
    QRectF region{0, 0, 1, 1};
    QImage picture;
    std::unique_ptr<FrameGrabber> grabber;
};

} // namespace OmbrelRecord
