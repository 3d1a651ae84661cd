#pragma once

#include <QtGui/QColor>
#include <QtQuick/QQuickItem>

namespace OmbrelRecord {

/// A drawing of the application's own set, in one colour, sharp at every scale: drawn once for its size in
/// device pixels. In QML it is `Icon`.
class IconItem : public QQuickItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(Icon)
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY colorChanged)
    /// The side of the square, in points.
    Q_PROPERTY(int size READ size WRITE setSize NOTIFY sizeChanged)

public:
    explicit IconItem(QQuickItem* parent = nullptr);

    QString name() const { return shownName; }
    void setName(const QString& name);
    QColor color() const { return shownColor; }
    void setColor(const QColor& color);
    int size() const { return side; }
    void setSize(int size);

Q_SIGNALS:
    void nameChanged();
    void colorChanged();
    void sizeChanged();

protected:
    QSGNode* updatePaintNode(QSGNode* old, UpdatePaintNodeData* data) override;
    void itemChange(ItemChange change, const ItemChangeData& value) override;

private:
    void drawAgain();

    QString shownName;
    QColor shownColor;
    int side = 20;
    bool stale = true;
};

} // namespace OmbrelRecord
