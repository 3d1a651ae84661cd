import QtQuick
import OmbrelRecord

/// Back, the recording's name, undo and redo; the format; help and Export.
Item {
    id: root

    required property EditorModel editor
    readonly property var project: editor.project
    property bool exporting: false
    property real exportProgress: 0
    /// How the export ended that nobody has looked at yet, and whether badly.
    property string exportOutcome
    property bool exportFailed: false

    signal backRequested()
    signal exportRequested()
    signal helpRequested()

    implicitHeight: 56

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
    }
    Hairline {
        anchors.bottom: parent.bottom
        width: parent.width
    }

    Row {
        anchors.left: parent.left
        anchors.leftMargin: Theme.s
        anchors.verticalCenter: parent.verticalCenter
        spacing: 2

        IconButton {
            objectName: "back"
            iconName: "back"
            tip: qsTr("Back to your recordings")
            focusPolicy: Qt.TabFocus
            onClicked: root.backRequested()
        }
        Item { width: Theme.xs; height: 1 }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            width: Math.min(implicitWidth, root.width / 2 - 330)
            text: root.editor.name
            font: Theme.lead
        }
        Item { width: Theme.m; height: 1 }
        IconButton {
            objectName: "undo"
            iconName: "undo"
            tip: qsTr("Undo")
            keys: qsTr("Ctrl Z")
            enabled: root.editor.canUndo
            focusPolicy: Qt.TabFocus
            onClicked: root.editor.undo()
        }
        IconButton {
            objectName: "redo"
            iconName: "redo"
            tip: qsTr("Redo")
            keys: qsTr("Ctrl ⇧ Z")
            enabled: root.editor.canRedo
            focusPolicy: Qt.TabFocus
            onClicked: root.editor.redo()
        }
        Icon {
            anchors.verticalCenter: parent.verticalCenter
            visible: root.editor.saveFailure.length > 0
            name: "warning"
            color: Theme.warning
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            visible: root.editor.saveFailure.length > 0
            width: Math.min(implicitWidth, 240)
            color: Theme.warning
            text: root.editor.saveFailure
        }
    }

    SegmentedControl {
        anchors.centerIn: parent
        width: 360
        label: qsTr("Format")
        focusPolicy: Qt.TabFocus
        value: root.project.format
        model: [
            { value: "16:9", icon: "format-wide", text: "16:9", tip: qsTr("YouTube · 1920 × 1080") },
            { value: "4:5", icon: "format-portrait", text: "4:5", tip: qsTr("X · 1080 × 1350") },
            { value: "9:16", icon: "format-story", text: "9:16", tip: qsTr("Shorts · 1080 × 1920") },
            { value: "1:1", icon: "format-square", text: "1:1", tip: qsTr("Square · 1080 × 1080") }
        ]
        onChosen: value => root.editor.set("format", value)
    }

    Row {
        anchors.right: parent.right
        anchors.rightMargin: Theme.l
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.s

        IconButton {
            iconName: "keyboard"
            tip: qsTr("Keyboard shortcuts")
            keys: "?"
            focusPolicy: Qt.TabFocus
            onClicked: root.helpRequested()
        }
        Button {
            objectName: "export"
            kind: "filled"
            iconName: root.exportOutcome.length === 0 ? "export" : root.exportFailed ? "warning" : "check"
            text: root.exportOutcome.length > 0 ? root.exportOutcome : root.exporting ? qsTr("Exporting %1 %").arg(Math.round(root.exportProgress * 100)) : qsTr("Export")
            tip: root.exportOutcome.length > 0 || root.exporting ? qsTr("Show the export") : qsTr("Make the film")
            keys: qsTr("Ctrl E")
            focusPolicy: Qt.TabFocus
            onClicked: root.exportRequested()
        }
    }
}
