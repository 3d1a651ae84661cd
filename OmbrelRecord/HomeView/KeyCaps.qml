pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// A combination of keys, each on a cap of its own.
Row {
    id: root

    property string keys
    property color ink: Theme.secondary
    property color edge: Theme.outline

    // Keys are held from left to right in every language.
    LayoutMirroring.enabled: false
    spacing: 4
    Accessible.role: Accessible.StaticText
    Accessible.name: keys

    Repeater {
        model: root.keys.length > 0 ? root.keys.split("+") : []

        Rectangle {
            id: cap
            required property string modelData

            width: Math.max(24, name.implicitWidth + 12)
            height: 24
            radius: 6
            color: "transparent"
            border.color: root.edge

            Text {
                id: name
                anchors.centerIn: parent
                text: cap.modelData
                textFormat: Text.PlainText
                font: Theme.tiny
                color: root.ink
            }
        }
    }
}
