pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Layouts
import OmbrelRecord

/// Every control in every state on one sheet, for looking at them side by side.
Rectangle {
    id: gallery

    implicitWidth: 980
    implicitHeight: 560
    color: Theme.background

    RowLayout {
        anchors.fill: parent
        anchors.margins: Theme.xl
        spacing: Theme.xl

        Panel {
            Layout.fillWidth: true
            Layout.fillHeight: true

            ColumnLayout {
                anchors { fill: parent; margins: Theme.l }
                spacing: Theme.m

                Label { text: qsTr("Buttons"); font: Theme.lead }
                RowLayout {
                    spacing: Theme.s
                    Button { text: qsTr("Export"); kind: "filled"; iconName: "export" }
                    Button { text: qsTr("Open") }
                    Button { text: qsTr("Quiet"); kind: "quiet" }
                    Button { text: qsTr("Record"); kind: "record"; iconName: "record" }
                }
                RowLayout {
                    spacing: Theme.s
                    Button { text: qsTr("Delete"); kind: "danger"; iconName: "trash" }
                    Button { text: qsTr("Off"); enabled: false }
                    Button { text: qsTr("Off"); kind: "filled"; enabled: false }
                    IconButton { iconName: "undo"; tip: qsTr("Undo") }
                    IconButton { iconName: "zoom"; tip: qsTr("Zoom"); checkable: true; checked: true }
                    IconButton { iconName: "redo"; tip: qsTr("Redo"); enabled: false }
                }
                RowLayout {
                    spacing: Theme.s
                    Chip { text: qsTr("Wide"); iconName: "format-wide"; checkable: true; checked: true }
                    Chip { text: qsTr("Square"); iconName: "format-square"; checkable: true }
                    Chip { text: qsTr("2×") }
                }
                SegmentedControl {
                    Layout.fillWidth: true
                    label: qsTr("Shape")
                    value: 1
                    model: [{ value: 0, text: qsTr("None") }, { value: 1, text: qsTr("Soft") },
                            { value: 2, text: qsTr("Strong") }]
                    onChosen: choice => value = choice
                }
                Label { text: qsTr("Texts"); font: Theme.lead; Layout.topMargin: Theme.s }
                Label { text: qsTr("Body text of thirteen pixels, 0:12 of 3:40") }
                Label { text: qsTr("Secondary text says what comes next."); secondary: true }
                Label { text: qsTr("Tiny"); font: Theme.tiny; secondary: true }
                Item { Layout.fillHeight: true }
            }
        }
        Panel {
            Layout.fillWidth: true
            Layout.fillHeight: true

            ColumnLayout {
                anchors { fill: parent; margins: Theme.l }
                spacing: Theme.m

                Label { text: qsTr("Values"); font: Theme.lead }
                Slider {
                    Layout.fillWidth: true; label: qsTr("Padding"); value: 0.3; resetValue: 0.5
                }
                Slider {
                    Layout.fillWidth: true; label: qsTr("Offset"); from: -1; to: 1; value: -0.4; resetValue: 0
                }
                Slider { Layout.fillWidth: true; label: qsTr("Off"); value: 0.6; enabled: false }
                Switch { Layout.fillWidth: true; text: qsTr("Follow the action"); checked: true }
                Switch { Layout.fillWidth: true; text: qsTr("Play sounds") }
                Switch { Layout.fillWidth: true; text: qsTr("Not here"); enabled: false }
                TextField { Layout.fillWidth: true; placeholderText: qsTr("Title of the film") }
                TextField { Layout.fillWidth: true; text: qsTr("Four agents fix a bug"); label: qsTr("Title") }
                ComboBox {
                    Layout.fillWidth: true
                    label: qsTr("Microphone")
                    iconName: "microphone"
                    model: [{ value: 1, text: qsTr("Built-in microphone") }]
                }
                ProgressBar { Layout.fillWidth: true; value: 0.42 }
                Item { Layout.fillHeight: true }
            }
        }
    }
}
