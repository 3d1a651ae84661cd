pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// The one soft shadow, under what floats: a child of it that lies behind its content.
Item {
    id: root

    property real radius: Theme.radiusM
    property real reach: 18

    z: -1
    anchors.fill: parent

    Repeater {
        // Rings of falling weight: looks like a blur, and is drawn the same with and without a GPU.
        model: 6
        Rectangle {
            required property int index
            readonly property real spread: root.reach * (index + 1) / 6

            anchors.fill: parent
            anchors.margins: -spread
            anchors.topMargin: -spread + 6
            anchors.bottomMargin: -spread - 6
            radius: root.radius + spread
            color: Theme.shadow
            opacity: 0.16 * (1 - index / 6)
        }
    }
}
