import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// One of several choices that need a line of explanation each. `box` draws a check box instead of a mark at
/// the end: several can be chosen.
T.AbstractButton {
    id: root

    property string title
    property string detail
    property string iconName
    property bool box: false

    signal picked()

    implicitHeight: 56
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    onClicked: picked()
    Keys.onReturnPressed: picked()
    Accessible.role: box ? Accessible.CheckBox : Accessible.RadioButton
    Accessible.name: title
    Accessible.description: detail
    Accessible.checkable: true
    Accessible.checked: checked

    background: Rectangle {
        radius: Theme.radiusS + 2
        color: root.checked ? Theme.chosen : root.down ? Theme.pressed : root.hovered ? Theme.hovered : "transparent"
        border.color: root.checked ? Theme.accent : Theme.line
        FocusRing { shown: root.visualFocus }
    }
    contentItem: Item {
        Icon {
            id: sign
            anchors.left: parent.left
            anchors.leftMargin: Theme.m
            anchors.verticalCenter: parent.verticalCenter
            name: root.iconName
            size: 22
            color: root.checked ? Theme.accentText : Theme.secondary
        }
        Column {
            anchors.left: sign.right
            anchors.leftMargin: Theme.m
            anchors.right: mark.left
            anchors.rightMargin: Theme.s
            anchors.verticalCenter: parent.verticalCenter
            spacing: 1

            Label {
                width: parent.width
                text: root.title
                font: Theme.strong
                Accessible.ignored: true
            }
            Label {
                width: parent.width
                text: root.detail
                font: Theme.tiny
                secondary: true
                Accessible.ignored: true
            }
        }
        Rectangle {
            id: mark
            anchors.right: parent.right
            anchors.rightMargin: Theme.m
            anchors.verticalCenter: parent.verticalCenter
            width: 18
            height: 18
            radius: root.box ? 5 : 9
            color: root.checked ? Theme.accentFill : "transparent"
            border.color: root.checked ? Theme.accentFill : Theme.outline
            border.width: root.checked ? 0 : 1.5

            Icon {
                anchors.centerIn: parent
                visible: root.checked
                name: "check"
                size: 14
                color: Theme.onFill
            }
        }
    }
}
