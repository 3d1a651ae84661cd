import QtQuick
import OmbrelRecord

/// One device pixel between two surfaces.
Rectangle {
    property bool vertical: false

    implicitWidth: vertical ? 1 / Screen.devicePixelRatio : 0
    implicitHeight: vertical ? 0 : 1 / Screen.devicePixelRatio
    color: Theme.line
    Accessible.ignored: true
}
