import QtQuick
import QtQuick.Layouts
import OmbrelRecord

/// What happened and what to do next, over the width of its column. Actions are children.
Rectangle {
    id: root

    property string text
    property string iconName: "warning"
    property color tint: Theme.warning
    property color ground: Theme.speed
    property bool closable: true
    default property alias actions: row.data

    signal closed()

    implicitHeight: Math.max(52, words.implicitHeight + 28)
    radius: Theme.radiusM
    color: Qt.rgba(ground.r, ground.g, ground.b, Theme.dark ? 0.11 : 0.13)
    border.color: Qt.rgba(ground.r, ground.g, ground.b, Theme.dark ? 0.3 : 0.5)
    Accessible.role: Accessible.AlertMessage
    Accessible.name: text

    RowLayout {
        anchors { fill: parent; leftMargin: Theme.l; rightMargin: Theme.s }
        spacing: Theme.m

        Icon { name: root.iconName; color: root.tint }
        Label {
            id: words
            Layout.fillWidth: true
            text: root.text
            wrapMode: Text.WordWrap
            elide: Text.ElideNone
            lineHeight: 1.15
        }
        Row {
            id: row
            spacing: Theme.s
        }
        IconButton {
            visible: root.closable
            implicitWidth: 32
            implicitHeight: 32
            iconName: "close"
            iconSize: 16
            tip: qsTr("Dismiss")
            onClicked: root.closed()
        }
    }
}
