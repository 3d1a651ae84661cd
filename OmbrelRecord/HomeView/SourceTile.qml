import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// One display or window in the picker: its picture and its name.
T.AbstractButton {
    id: control

    property var app
    property string still
    property int revision: 0
    property string iconName: "window"
    property string detail

    implicitWidth: 176
    implicitHeight: 148
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    checkable: false
    Accessible.role: Accessible.RadioButton
    Accessible.name: text
    Accessible.description: detail
    Accessible.checkable: true
    Accessible.checked: checked
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()

    background: Rectangle {
        radius: Theme.radiusM
        color: control.checked ? Theme.chosen : control.down ? Theme.pressed
            : control.hovered ? Theme.hovered : "transparent"
        border.width: control.checked ? 2 : 0
        border.color: Theme.accent
        FocusRing { shown: control.visualFocus; radius: Theme.radiusM + 3 }
    }
    contentItem: Item {
        Rectangle {
            id: frame
            x: 10
            y: 10
            width: parent.width - 20
            height: 92
            radius: Theme.radiusS
            color: Theme.sunken

            Icon {
                anchors.centerIn: parent
                visible: picture.empty
                name: control.iconName
                color: Theme.secondary
                size: 28
            }
            Picture {
                id: picture
                anchors.fill: parent
                anchors.margins: 4
                app: control.app
                name: control.still
                revision: control.revision
                radius: 4
                whole: true
            }
        }
        Label {
            id: title
            anchors { left: frame.left; right: frame.right; top: frame.bottom; topMargin: 7 }
            text: control.text
            font: Theme.strong
            horizontalAlignment: Text.AlignLeft
            Accessible.ignored: true
        }
        Label {
            anchors { left: frame.left; right: frame.right; top: title.bottom }
            text: control.detail
            font: Theme.tiny
            secondary: true
            horizontalAlignment: Text.AlignLeft
            Accessible.ignored: true
        }
    }
}
