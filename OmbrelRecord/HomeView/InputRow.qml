import QtQuick
import OmbrelRecord

/// One thing that is recorded with the screen: a symbol, what it is, what it is set to, and its switch. What
/// belongs to it when it is on are children.
Item {
    id: root

    property string iconName
    property string title
    property string detail
    property bool checked: false
    property string tip
    default property alias more: extra.data

    signal toggled()

    implicitHeight: 50 + (extra.visible ? extra.implicitHeight + 10 : 0)

    Rectangle {
        id: sign
        width: 36
        height: 36
        radius: 10
        anchors { left: parent.left; top: parent.top; topMargin: 7 }
        color: root.checked ? Theme.chosen : Theme.sunken

        Icon {
            anchors.centerIn: parent
            name: root.iconName
            color: root.checked ? Theme.accentText : Theme.secondary
        }
    }
    Column {
        anchors {
            left: sign.right; leftMargin: Theme.m
            right: control.left; rightMargin: Theme.s
            verticalCenter: sign.verticalCenter
        }
        Label {
            width: parent.width
            text: root.title
            font: Theme.strong
            horizontalAlignment: Text.AlignLeft
            Accessible.ignored: true
        }
        Label {
            width: parent.width
            visible: text.length > 0
            text: root.detail
            font: Theme.tiny
            secondary: true
            horizontalAlignment: Text.AlignLeft
            Accessible.ignored: true
        }
    }
    Switch {
        id: control
        anchors { right: parent.right; verticalCenter: sign.verticalCenter }
        tip: root.tip
        Accessible.name: root.title
        Accessible.description: root.detail
        checked: root.checked
        // The model decides: it may have to ask for permission first.
        onToggled: {
            root.toggled();
            checked = Qt.binding(() => root.checked);
        }
    }
    TapHandler {
        onTapped: root.toggled()
    }
    Column {
        id: extra
        visible: root.checked && implicitHeight > 0
        anchors { left: parent.left; right: parent.right; top: sign.bottom; topMargin: 8 }
        spacing: Theme.s
    }
}
