pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// The shape of the film.
InspectorPanel {
    id: root

    title: qsTr("Format")
    fields: ["format"]

    Column {
        width: parent.width
        spacing: Theme.s

        Repeater {
            model: root.formats
            OptionRow {
                required property var modelData
                width: parent.width
                title: modelData.name
                detail: modelData.detail
                iconName: modelData.icon
                checked: root.project.format === modelData.value
                onPicked: root.editor.set("format", modelData.value)
            }
        }
    }
    PanelSection {
        first: true
        hint: qsTr("The film is planned anew for each format: the camera follows the action closer where the picture is narrow. Several formats at once can be exported from the same edit.")
    }

    readonly property var formats: [
        { value: "16:9", name: qsTr("YouTube"), detail: qsTr("16:9 · 1920 × 1080"), icon: "format-wide" },
        { value: "4:5", name: qsTr("X"), detail: qsTr("4:5 · 1080 × 1350"), icon: "format-portrait" },
        { value: "9:16", name: qsTr("Shorts"), detail: qsTr("9:16 · 1080 × 1920"), icon: "format-story" },
        { value: "1:1", name: qsTr("Square"), detail: qsTr("1:1 · 1080 × 1080"), icon: "format-square" }
    ]
}
