import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// On or off. With a text it is a row as wide as there is room: the text at its beginning, the switch at its
/// end.
T.Switch {
    id: control

    property string tip

    font: Theme.body
    padding: 0
    spacing: Theme.m
    implicitWidth: text.length > 0 ? label.implicitWidth + spacing + 36 : 36
    implicitHeight: text.length > 0 ? 32 : 20
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.name: text.length > 0 ? text : tip
    Accessible.description: tip

    indicator: Rectangle {
        x: control.text.length === 0 || control.mirrored ? 0 : control.width - width
        y: Math.round((control.height - height) / 2)
        width: 36
        height: 20
        radius: 10
        color: !control.enabled ? Theme.line : control.checked ? Theme.accentFill
            : Theme.dark ? "#454B58" : "#8A919F"
        Behavior on color { ColorAnimation { duration: Theme.quick } }

        Rectangle {
            x: control.mirrored ? parent.width - width - 3 - control.visualPosition * 16
                                : 3 + control.visualPosition * 16
            y: 3
            width: 14
            height: 14
            radius: 7
            color: control.enabled ? "#FFFFFF" : Theme.disabled
            Behavior on x {
                enabled: !control.pressed
                NumberAnimation { duration: Theme.quick; easing.type: Easing.OutCubic }
            }
        }
        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: control.hovered ? "#14FFFFFF" : "transparent"
        }
        FocusRing { shown: control.visualFocus; radius: 13 }
    }

    contentItem: Label {
        id: label
        visible: control.text.length > 0
        text: control.text
        font: control.font
        enabled: control.enabled
        verticalAlignment: Text.AlignVCenter
        leftPadding: control.mirrored ? 36 + control.spacing : 0
        rightPadding: control.mirrored ? 0 : 36 + control.spacing
        Accessible.ignored: true
    }

    Tooltip { text: control.tip; shown: control.hovered && control.tip.length > 0 }
}
