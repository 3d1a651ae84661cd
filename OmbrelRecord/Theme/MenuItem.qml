import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

T.MenuItem {
    id: control

    property string iconName
    property string keys
    property bool danger: false
    readonly property color ink: !enabled ? Theme.disabled
        : danger ? (Theme.dark ? "#FF7A7C" : "#C42B2D") : Theme.text

    font: Theme.body
    implicitWidth: row.implicitWidth + 24
    implicitHeight: visible ? 34 : 0
    leftPadding: 10
    rightPadding: 10
    hoverEnabled: true
    Accessible.name: text

    contentItem: Item {
        Row {
            id: row
            spacing: 10
            anchors.verticalCenter: parent.verticalCenter
            anchors.left: parent.left

            Icon {
                readonly property string shown: control.checkable
                    ? (control.checked ? "check" : "") : control.iconName
                visible: control.checkable || control.iconName.length > 0
                width: 20
                height: 20
                name: shown
                color: control.danger ? control.ink : Theme.secondary
                anchors.verticalCenter: parent.verticalCenter
            }
            Text {
                text: control.text
                textFormat: Text.PlainText
                font: control.font
                color: control.ink
                elide: Text.ElideRight
                width: Math.min(implicitWidth, 360)
                anchors.verticalCenter: parent.verticalCenter
            }
        }
        Text {
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            text: control.keys
            textFormat: Text.PlainText
            font: Theme.tiny
            color: Theme.secondary
        }
    }
    background: Rectangle {
        radius: Theme.radiusS - 2
        color: control.down ? Theme.pressed : control.highlighted || control.hovered ? Theme.hovered : "transparent"
    }
}
