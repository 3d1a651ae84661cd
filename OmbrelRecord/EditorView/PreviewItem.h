#pragma once

#include "OmbrelRecord/EditorModel/EditorModel.h"

#include <QtCore/QPointer>
#include <QtQml/qqmlregistration.h>
#include <QtQuick/QQuickItem>

namespace OmbrelRecord {

class PreviewPicture;

/// Shows the film as the editor's player makes it, as large as there is room, in its own shape. Main thread.
class PreviewItem : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(OmbrelRecord::EditorModel* editor READ editor WRITE setEditor NOTIFY editorChanged)
    /// Where the film stands in the item.
    Q_PROPERTY(QRectF picture READ pictureRect NOTIFY pictureChanged)
    Q_PROPERTY(bool ready READ ready NOTIFY readyChanged)

public:
    explicit PreviewItem(QQuickItem* parent = nullptr);

    EditorModel* editor() const { return model; }
    void setEditor(EditorModel* editor);
    QRectF pictureRect() const;
    /// Whether there is a picture, and the right one; without a player there is none to wait for.
    bool ready() const;

    /// The recording's point (normalised to the crop in force, as zooms are given) under a point of the item,
    /// and back. Points outside the recording's window go on in the same scale.
    Q_INVOKABLE QPointF recordingPoint(const QPointF& point) const;
    Q_INVOKABLE QPointF itemPoint(const QPointF& recording) const;
    /// Likewise, normalised to the whole recording, as crops are given.
    Q_INVOKABLE QPointF wholePoint(const QPointF& point) const;
    Q_INVOKABLE QPointF itemPointOfWhole(const QPointF& whole) const;

Q_SIGNALS:
    void editorChanged();
    void pictureChanged();
    void readyChanged();

protected:
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;
    void geometryChange(const QRectF& now, const QRectF& before) override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;

private:
    void tellSize();

    QPointer<EditorModel> model;
    QPointer<PreviewPicture> source;
    bool stale = true;
    bool wasReady = false;
};

} // namespace OmbrelRecord
