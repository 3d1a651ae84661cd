#pragma once

#include "OmbrelRecord/EditorModel/Filmstrip.h"
#include "OmbrelRecord/EditorModel/TimelineController.h"
#include "OmbrelRecord/EditorModel/Waveform.h"

#include <QtCore/QPointer>
#include <QtGui/QColor>
#include <QtGui/QFont>
#include <QtQml/qqmlregistration.h>
#include <QtQuick/QQuickPaintedItem>
#include <memory>

namespace OmbrelRecord {

/// One layer of the timeline, painted as a whole: a few of these stand for what would be thousands of items.
/// It paints what the controller's view shows and nothing beyond. Main thread.
class TimelineLayer : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(OmbrelRecord::TimelineController* controller READ controller WRITE setController NOTIFY
                   controllerChanged)
    Q_PROPERTY(Part part MEMBER part NOTIFY lookChanged)
    Q_PROPERTY(QFont font MEMBER font NOTIFY lookChanged)
    Q_PROPERTY(QColor background MEMBER background NOTIFY lookChanged)
    Q_PROPERTY(QColor surface MEMBER surface NOTIFY lookChanged)
    Q_PROPERTY(QColor line MEMBER line NOTIFY lookChanged)
    Q_PROPERTY(QColor text MEMBER text NOTIFY lookChanged)
    Q_PROPERTY(QColor secondary MEMBER secondary NOTIFY lookChanged)
    Q_PROPERTY(QColor accent MEMBER accent NOTIFY lookChanged)
    Q_PROPERTY(QColor speed MEMBER speed NOTIFY lookChanged)
    Q_PROPERTY(QColor zoom MEMBER zoom NOTIFY lookChanged)
    Q_PROPERTY(QColor cut MEMBER cut NOTIFY lookChanged)
    Q_PROPERTY(QString speedHint MEMBER speedHint NOTIFY lookChanged)
    Q_PROPERTY(QString zoomHint MEMBER zoomHint NOTIFY lookChanged)
    Q_PROPERTY(bool busy READ busy NOTIFY busyChanged)
    Q_PROPERTY(double slowestPaint READ slowestPaint)

public:
    /// `film` is the recording itself: pictures, sound, activity, cuts. `lanes` are the blocks.
    enum class Part { Ruler, Film, Lanes };
    Q_ENUM(Part)

    explicit TimelineLayer(QQuickItem* parent = nullptr);

    TimelineController* controller() const { return shown; }
    void setController(TimelineController* controller);

    /// Pictures or sound are still being read.
    bool busy() const;
    /// Milliseconds that the slowest painting took since the last call.
    double slowestPaint();

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void controllerChanged();
    void lookChanged();
    void busyChanged();

protected:
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;

private:
    using Zone = TimelineController::Zone;

    void openMedia();
    void showSlots();
    double top() const; ///< of the layer, on the timeline
    double ratio() const;
    bool tinted(const QColor& color) const { return color.isValid(); }

    void paintRuler(QPainter& painter) const;
    void paintFilm(QPainter& painter);
    void paintPictures(QPainter& painter, const QRectF& row) const;
    void paintSound(QPainter& painter, const QRectF& row) const;
    void paintActivity(QPainter& painter, const QRectF& row) const;
    void paintRemoved(QPainter& painter, const QRectF& row) const;
    void paintEnds(QPainter& painter, const QRectF& row) const;
    void paintLanes(QPainter& painter) const;
    void paintLane(QPainter& painter, Zone lane) const;
    void paintBlock(QPainter& painter, const QRectF& block, const QColor& color, const QString& full,
                    const QString& brief, bool selected, bool hovered, double indent) const;

    QPointer<TimelineController> shown;
    Part part = Part::Film;
    QFont font;
    QColor background, surface, line, text, secondary, accent, speed, zoom, cut;
    QString speedHint, zoomHint;

    QPointer<Filmstrip> film;
    QPointer<Waveform> sound;
    const EditorModel* mediaOf = nullptr;
    double slowest = 0;
};

} // namespace OmbrelRecord
