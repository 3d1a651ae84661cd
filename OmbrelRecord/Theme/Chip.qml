import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// A small rounded button that can stay chosen (`checkable`).
T.Button {
    id: control

    property string iconName
    property string tip
    readonly property color ink: !enabled ? Theme.disabled : checked ? Theme.accentText
        : hovered ? Theme.text : Theme.secondary

    font: Theme.strong
    leftPadding: iconName.length > 0 ? 8 : 12
    rightPadding: 12
    spacing: 6
    implicitWidth: content.implicitWidth + leftPadding + rightPadding
    implicitHeight: Theme.small
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.name: text.length > 0 ? text : tip
    Accessible.description: tip

    contentItem: Item {
        Row {
            id: content
            anchors.centerIn: parent
            spacing: control.spacing

            Icon {
                visible: control.iconName.length > 0
                name: control.iconName
                size: 16
                color: control.ink
                anchors.verticalCenter: parent.verticalCenter
            }
            Text {
                visible: text.length > 0
                text: control.text
                textFormat: Text.PlainText
                font: control.font
                color: control.ink
                anchors.verticalCenter: parent.verticalCenter
            }
        }
    }
    background: Rectangle {
        radius: height / 2
        color: control.checked ? Theme.chosen : control.down ? Theme.pressed
            : control.hovered ? Theme.hovered : "transparent"
        border.color: control.checked ? Theme.accent : Theme.line
        FocusRing { shown: control.visualFocus; radius: height / 2 }
    }
    Tooltip { text: control.tip; shown: control.hovered }
}
