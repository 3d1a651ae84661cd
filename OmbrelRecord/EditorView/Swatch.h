#pragma once

#include <QtCore/QStringList>
#include <QtCore/QUrl>
#include <QtCore/QVariant>
#include <QtGui/QColor>
#include <QtGui/QImage>
#include <QtQml/qqmlregistration.h>
#include <QtQuick/QQuickPaintedItem>

namespace OmbrelRecord {

/// A small picture of a background: a wallpaper, a gradient, a colour or an image file, the first that is
/// given. Wallpapers and files are drawn on a thread of their own, once for all swatches. Main thread.
class Swatch : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString wallpaper MEMBER wallpaper NOTIFY changed)
    Q_PROPERTY(QString backdrop MEMBER backdrop NOTIFY changed)
    Q_PROPERTY(QString solid MEMBER solid NOTIFY changed)
    Q_PROPERTY(QString file MEMBER file NOTIFY changed)
    Q_PROPERTY(double radius MEMBER radius NOTIFY changed)
    Q_PROPERTY(QColor line MEMBER line NOTIFY changed)
    /// The names there are: [{name, title}], wallpapers with their family.
    Q_PROPERTY(QVariantList wallpapers READ wallpapers CONSTANT)
    Q_PROPERTY(QVariantList backdrops READ backdrops CONSTANT)

public:
    explicit Swatch(QQuickItem* parent = nullptr);

    static QVariantList wallpapers();
    static QVariantList backdrops();
    Q_INVOKABLE static QString pathOf(const QUrl& file) { return file.toLocalFile(); }
    /// Whether every picture asked for so far is there.
    static bool settled();

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void changed();

private:
    QString wallpaper, backdrop, solid, file;
    double radius = 8;
    QColor line;
};

} // namespace OmbrelRecord
