import QtQuick
import OmbrelRecord

/// Controls that belong together, under a heading; a line parts it from the section above.
Column {
    id: root

    property string title
    property string hint
    property bool first: false
    default property alias content: inside.data

    width: parent ? parent.width : implicitWidth
    spacing: Theme.m

    Hairline {
        visible: !root.first
        width: parent.width
    }
    Label {
        visible: root.title.length > 0
        width: parent.width
        text: root.title
        font: Theme.strong
        Accessible.role: Accessible.Heading
    }
    Column {
        id: inside
        width: parent.width
        spacing: Theme.m
    }
    Label {
        visible: root.hint.length > 0
        width: parent.width
        text: root.hint
        font: Theme.tiny
        secondary: true
        wrapMode: Text.WordWrap
        lineHeight: 1.2
    }
}
