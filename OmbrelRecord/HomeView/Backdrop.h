#pragma once

#include "OmbrelRecord/AppModel/SerialQueue.h"

#include <QtGui/QImage>
#include <QtQuick/QQuickItem>

namespace OmbrelRecord {

/// A wallpaper of the films by its name, with round corners and room for a picture in its middle, under which
/// it lays the film's soft shadow (`window`, in points; empty for none). The wallpaper is drawn on another
/// thread once the item has been shown; until it is there, and for a name that is not known, a dark gradient
/// stands in.
class Backdrop : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString wallpaper READ wallpaper WRITE setWallpaper NOTIFY changed)
    Q_PROPERTY(qreal radius READ radius WRITE setRadius NOTIFY changed)
    Q_PROPERTY(QRectF window READ windowPlace WRITE setWindowPlace NOTIFY changed)
    Q_PROPERTY(qreal windowRadius READ windowRadius WRITE setWindowRadius NOTIFY changed)
    /// Whether what was asked for is drawn.
    Q_PROPERTY(bool ready READ ready NOTIFY readyChanged)

public:
    explicit Backdrop(QQuickItem* parent = nullptr);

    QString wallpaper() const { return wanted; }
    void setWallpaper(const QString& wallpaper);
    qreal radius() const { return corner; }
    void setRadius(qreal radius);
    QRectF windowPlace() const { return hole; }
    void setWindowPlace(const QRectF& place);
    qreal windowRadius() const { return holeCorner; }
    void setWindowRadius(qreal radius);
    bool ready() const;

Q_SIGNALS:
    void changed();
    void readyChanged();

protected:
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;

private:
    void drawAgain();
    void request();

    QString wanted;
    qreal corner = 0;
    QRectF hole;
    qreal holeCorner = 0;
    QImage drawing;     ///< of the wallpaper `drawn`
    QString drawn;      ///< its name
    bool asked = false; ///< a drawing is under way
    bool seen = false;  ///< it has been in a frame
    bool stale = true;
    SerialQueue queue; ///< the last member: nothing is drawn any more when the others go
};

} // namespace OmbrelRecord
