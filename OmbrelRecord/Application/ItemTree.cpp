#include "OmbrelRecord/Application/ItemTree.h"

#include <QtCore/QJsonArray>
#include <QtCore/QMetaEnum>
#include <QtGui/QAccessible>
#include <QtGui/QGuiApplication>
#include <QtQuick/QQuickItem>
#include <QtQuick/QQuickWindow>

namespace OmbrelRecord {

namespace {

QJsonObject place(const QRectF& rect) {
    return {{QStringLiteral("x"), rect.x()},
            {QStringLiteral("y"), rect.y()},
            {QStringLiteral("width"), rect.width()},
            {QStringLiteral("height"), rect.height()}};
}

/// The type as it is written in QML.
QString typeOf(const QQuickItem& item) {
    const QString name = QString::fromLatin1(item.metaObject()->className());
    const qsizetype generated = name.indexOf(QLatin1String("_QML"));
    return (generated < 0 ? name : name.left(generated)).section(QStringLiteral("::"), -1);
}

void walk(QQuickItem* item, QRectF visible, const QPointF& window, QJsonObject common, QJsonArray& found) {
    if (!item->isVisible() || item->opacity() == 0) return;
    const QRectF area = item->mapRectToScene(QRectF(0, 0, item->width(), item->height())) & visible;
    if (item->clip()) visible = area;
    QAccessibleInterface* face = QAccessible::queryAccessibleInterface(item);
    const QString name = face ? face->text(QAccessible::Name) : QString();
    const bool known = !name.isEmpty() || !item->objectName().isEmpty() || item->activeFocusOnTab() ||
                       item->hasActiveFocus();
    if (known && !area.isEmpty()) {
        QJsonObject entry = place(area.translated(window));
        entry[QStringLiteral("window")] = common[QStringLiteral("title")];
        entry[QStringLiteral("type")] = typeOf(*item);
        entry[QStringLiteral("object")] = item->objectName();
        entry[QStringLiteral("name")] = name;
        entry[QStringLiteral("enabled")] = item->isEnabled();
        entry[QStringLiteral("focused")] = item->hasActiveFocus();
        if (face) {
            entry[QStringLiteral("role")] =
                QString::fromLatin1(QMetaEnum::fromType<QAccessible::Role>().valueToKey(face->role()));
            entry[QStringLiteral("description")] = face->text(QAccessible::Description);
            entry[QStringLiteral("checked")] = static_cast<bool>(face->state().checked);
            entry[QStringLiteral("value")] = face->text(QAccessible::Value);
        }
        found.append(entry);
    }
    for (QQuickItem* child : item->childItems())
        walk(child, visible, window, common, found);
}

} // namespace

QJsonObject ItemTree::shown() {
    QJsonArray windows, items;
    for (QWindow* each : QGuiApplication::topLevelWindows()) {
        auto* window = qobject_cast<QQuickWindow*>(each);
        if (!window || !window->isVisible()) continue;
        QJsonObject entry = place(window->geometry());
        entry[QStringLiteral("title")] = window->title();
        entry[QStringLiteral("active")] = window->isActive();
        windows.append(entry);
        const QPointF origin = window->mapToGlobal(QPointF(0, 0));
        walk(window->contentItem(), QRectF(QPointF(0, 0), window->size()), origin, entry, items);
    }
    return {{QStringLiteral("windows"), windows}, {QStringLiteral("items"), items}};
}

} // namespace OmbrelRecord
