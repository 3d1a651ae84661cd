pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// How a film comes about, for those who have none yet.
Item {
    id: root

    property bool sample: false

    signal sampleWanted()

    readonly property var steps: [
        { icon: "record", title: qsTr("Record"),
          text: qsTr("Pick a display or a window and work as you always do. Pauses and detours don't matter.") },
        { icon: "sparkle", title: qsTr("Let it watch"),
          text: qsTr("Waiting is sped up, the view moves to where things happen, and the pointer glides.") },
        { icon: "export", title: qsTr("Share the film"),
          text: qsTr("Change what you like on the timeline, then export in the shape each place wants.") }
    ]

    Row {
        id: row
        anchors { fill: parent; topMargin: Theme.m }
        spacing: Theme.l

        Repeater {
            model: root.steps

            Panel {
                id: step
                required property var modelData
                required property int index

                width: (row.width - (root.steps.length - 1) * row.spacing) / root.steps.length
                height: row.height

                Column {
                    anchors { fill: parent; margins: Theme.l }
                    spacing: Theme.s

                    Rectangle {
                        width: 40
                        height: 40
                        radius: 12
                        color: step.index === 0 ? (Theme.dark ? "#33FF4D4F" : "#1FDB3436") : Theme.chosen

                        Icon {
                            anchors.centerIn: parent
                            name: step.modelData.icon
                            color: step.index === 0 ? (Theme.dark ? "#FF7A7C" : "#C42B2D") : Theme.accentText
                        }
                    }
                    Item { width: 1; height: 1 }
                    Label { text: step.modelData.title; font: Theme.lead; width: parent.width }
                    Label {
                        text: step.modelData.text
                        width: parent.width
                        secondary: true
                        wrapMode: Text.WordWrap
                        lineHeight: 1.2
                    }
                }
            }
        }
    }
}
