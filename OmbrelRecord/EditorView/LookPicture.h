#pragma once

#include "OmbrelRecord/EditorModel/LookPictures.h"

#include <QtCore/QPointer>
#include <QtQml/qqmlregistration.h>
#include <QtQuick/QQuickItem>

namespace OmbrelRecord {

/// Shows one of the pictures of `LookPictures`, filling the item, with round corners. Main thread.
class LookPicture : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(OmbrelRecord::LookPictures* pictures READ pictures WRITE setPictures NOTIFY changed)
    Q_PROPERTY(int row READ row WRITE setRow NOTIFY changed)
    Q_PROPERTY(double radius MEMBER corner NOTIFY changed)
    Q_PROPERTY(bool empty READ empty NOTIFY changed)

public:
    explicit LookPicture(QQuickItem* parent = nullptr);

    LookPictures* pictures() const { return source; }
    void setPictures(LookPictures* pictures);
    int row() const { return shownRow; }
    void setRow(int row);
    bool empty() const { return !source || source->picture(shownRow).isNull(); }

Q_SIGNALS:
    void changed();

protected:
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;

private:
    void drawAgain();

    QPointer<LookPictures> source;
    int shownRow = -1;
    double corner = 0;
    bool stale = true;
};

} // namespace OmbrelRecord
