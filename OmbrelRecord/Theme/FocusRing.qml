import QtQuick
import OmbrelRecord

/// Around the control that has the keyboard's focus. `shown` is usually the control's `visualFocus`.
Rectangle {
    property bool shown: false
    property real around: 3

    anchors.fill: parent
    anchors.margins: -around
    visible: shown
    color: "transparent"
    border.color: Theme.accent
    border.width: 2
    radius: Theme.radiusS + around
    z: 1
}
