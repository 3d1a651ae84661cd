import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// A square button with an icon alone; `tip` is also its name.
T.Button {
    id: control

    required property string iconName
    required property string tip
    property string keys
    property int iconSize: 20
    /// For buttons that lie on pictures.
    property bool overPicture: false
    property color ink: !enabled ? Theme.disabled
        : overPicture ? Theme.onFill
        : checked ? Theme.accentText
        : hovered || down ? Theme.text : Theme.secondary

    implicitWidth: Theme.control
    implicitHeight: Theme.control
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.name: tip

    contentItem: Item {
        Icon {
            anchors.centerIn: parent
            name: control.iconName
            color: control.ink
            size: control.iconSize
        }
    }
    background: Rectangle {
        radius: Theme.radiusS
        color: control.overPicture ? Theme.overPicture : "transparent"

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: control.down ? (control.overPicture ? "#40FFFFFF" : Theme.pressed)
                : control.checked ? Theme.chosen
                : control.hovered ? (control.overPicture ? "#28FFFFFF" : Theme.hovered) : "transparent"
            Behavior on color { ColorAnimation { duration: Theme.quick } }
        }
        FocusRing { shown: control.visualFocus }
    }

    Tooltip { text: control.tip; keys: control.keys; shown: control.hovered || control.visualFocus }
}
