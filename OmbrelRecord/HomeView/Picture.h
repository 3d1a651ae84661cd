#pragma once

#include "OmbrelRecord/AppModel/AppModel.h"

#include <QtCore/QPointer>
#include <QtGui/QImage>
#include <QtQuick/QQuickItem>

namespace OmbrelRecord {

/// One of the application model's pictures by its name, filling the item, with round corners. Ask again by
/// changing `revision`. A picture that cannot be had leaves the item empty.
class Picture : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QObject* app READ app WRITE setApp NOTIFY changed)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY changed)
    Q_PROPERTY(int revision READ revision WRITE setRevision NOTIFY changed)
    Q_PROPERTY(qreal radius READ radius WRITE setRadius NOTIFY changed)
    /// As in a mirror: how people know themselves.
    Q_PROPERTY(bool mirrored READ mirrored WRITE setMirrored NOTIFY changed)
    /// The whole picture with room at its sides, instead of filling the item and losing its edges.
    Q_PROPERTY(bool whole READ whole WRITE setWhole NOTIFY changed)
    Q_PROPERTY(bool empty READ empty NOTIFY pictureChanged)
    /// Width ÷ height of the picture; 0 while there is none.
    Q_PROPERTY(qreal aspect READ aspect NOTIFY pictureChanged)

public:
    explicit Picture(QQuickItem* parent = nullptr);

    QObject* app() const { return model; }
    void setApp(QObject* app);
    QString name() const { return shownName; }
    void setName(const QString& name);
    int revision() const { return shownRevision; }
    void setRevision(int revision);
    qreal radius() const { return corner; }
    void setRadius(qreal radius);
    bool mirrored() const { return asMirror; }
    void setMirrored(bool mirrored);
    bool whole() const { return complete; }
    void setWhole(bool whole);
    bool empty() const { return image.isNull(); }
    qreal aspect() const { return empty() ? 0 : static_cast<qreal>(image.width()) / image.height(); }

Q_SIGNALS:
    void changed();
    void pictureChanged();

protected:
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;

private:
    void fetch();
    void drawAgain();

    QPointer<AppModel> model;
    QString shownName;
    int shownRevision = 0;
    qreal corner = 0;
    bool asMirror = false;
    bool complete = false;
    QImage image;
    bool stale = true;
};

} // namespace OmbrelRecord
