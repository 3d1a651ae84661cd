#pragma once

#include <QtQuick/QQuickImageProvider>

namespace OmbrelRecord {

/// The symbols for QML: "image://icons/NAME/COLOUR", the colour as RRGGBB or AARRGGBB (that of a QML colour's
/// text without its first sign), drawn at the source size asked for. Ask for whole device pixels:
///
///     Image {
///         readonly property int pixels: Math.round(20 * Screen.devicePixelRatio)
///         width: 20; height: 20
///         sourceSize: Qt.size(pixels, pixels)
///         source: "image://icons/play/" + String(Theme.text).slice(1)
///     }
///
/// Install with engine.addImageProvider("icons", new IconProvider); the engine owns it. Called on the
/// engine's threads.
class IconProvider : public QQuickImageProvider {
    Q_OBJECT

public:
    IconProvider();

    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};

} // namespace OmbrelRecord
