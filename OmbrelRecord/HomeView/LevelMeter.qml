pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// How loud the microphone hears, 0 to 1: a row of cells that light up.
Item {
    id: root

    property real level: 0
    property int cells: 24

    implicitHeight: 8
    Accessible.role: Accessible.Indicator
    Accessible.name: qsTr("Microphone level")
    Accessible.description: Math.round(level * 100) + " %"

    Row {
        anchors.fill: parent
        spacing: 3

        Repeater {
            model: root.cells

            Rectangle {
                required property int index
                readonly property real share: (index + 0.5) / root.cells

                width: (root.width - (root.cells - 1) * 3) / root.cells
                height: root.height
                radius: Math.min(2, width / 2)
                color: share >= root.level ? (Theme.dark ? "#2A2E38" : "#DDE1E8")
                    : share > 0.92 ? Theme.record : share > 0.78 ? Theme.speed
                    : Theme.dark ? "#4CC38A" : "#2E9E68"
            }
        }
    }
}
