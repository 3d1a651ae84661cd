import QtQuick
import OmbrelRecord

/// A small word about something that is missing, with what can be done about it.
Rectangle {
    id: root

    property string iconName: "info"
    property string text
    property string action

    signal acted()

    implicitHeight: Math.max(40, words.implicitHeight + 14)
    radius: Theme.radiusS
    color: Theme.sunken
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    Icon {
        id: sign
        anchors { left: parent.left; leftMargin: 10; top: parent.top; topMargin: 9 }
        name: root.iconName
        size: 18
        color: Theme.secondary
    }
    Label {
        id: words
        anchors {
            left: sign.right; leftMargin: 8
            right: button.visible ? button.left : parent.right; rightMargin: 8
            verticalCenter: parent.verticalCenter
        }
        text: root.text
        font: Theme.tiny
        secondary: true
        wrapMode: Text.WordWrap
        elide: Text.ElideNone
        horizontalAlignment: Text.AlignLeft
        Accessible.ignored: true
    }
    Button {
        id: button
        visible: root.action.length > 0
        anchors { right: parent.right; rightMargin: 6; verticalCenter: parent.verticalCenter }
        implicitHeight: Theme.small
        leftPadding: 10
        rightPadding: 10
        text: root.action
        tip: root.text
        onClicked: root.acted()
    }
}
