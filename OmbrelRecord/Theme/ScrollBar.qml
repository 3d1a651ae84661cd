import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// Slim, and only there when there is something to scroll.
T.ScrollBar {
    id: control

    padding: 2
    implicitWidth: 10
    implicitHeight: 10
    minimumSize: 0.08
    visible: size < 1
    Accessible.name: orientation === Qt.Vertical ? qsTr("Scroll up and down") : qsTr("Scroll sideways")

    contentItem: Rectangle {
        implicitWidth: 6
        implicitHeight: 6
        radius: 3
        color: Theme.outline
        opacity: control.pressed ? 1 : control.hovered ? 0.85 : 0.5
        Behavior on opacity { NumberAnimation { duration: Theme.quick } }
    }
}
