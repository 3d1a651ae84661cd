import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// The one red button.
T.Button {
    id: control

    property string keys
    property string tip

    implicitHeight: 56
    font: Theme.lead
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    Accessible.name: text
    Accessible.description: keys.length > 0 ? qsTr("%1 does the same everywhere").arg(keys) : tip
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    contentItem: Item {
        Row {
            anchors.centerIn: parent
            spacing: 12

            Rectangle {
                width: 22
                height: 22
                radius: 11
                color: "transparent"
                border.width: 2
                border.color: control.enabled ? Theme.onFill : Theme.disabled
                anchors.verticalCenter: parent.verticalCenter

                Rectangle {
                    anchors.centerIn: parent
                    width: 10
                    height: 10
                    radius: 5
                    color: control.enabled ? Theme.onFill : Theme.disabled
                }
            }
            Text {
                text: control.text
                textFormat: Text.PlainText
                font: control.font
                color: control.enabled ? Theme.onFill : Theme.disabled
                anchors.verticalCenter: parent.verticalCenter
            }
        }
    }
    background: Rectangle {
        radius: Theme.radiusL
        color: control.enabled ? Theme.recordFill : Theme.sunken
        border.width: control.enabled ? 0 : 1
        border.color: Theme.line

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: control.down ? "#30000000" : control.hovered ? "#18FFFFFF" : "transparent"
            Behavior on color { ColorAnimation { duration: Theme.quick } }
        }
        FocusRing { shown: control.visualFocus; radius: Theme.radiusL + 3; border.color: Theme.text }
    }
    Tooltip { text: control.tip; shown: control.hovered || control.visualFocus }
}
