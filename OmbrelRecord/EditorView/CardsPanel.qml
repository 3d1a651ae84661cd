import QtQuick
import OmbrelRecord

/// The cards at the beginning and at the end of the film.
InspectorPanel {
    id: root

    title: qsTr("Cards")
    fields: ["showTitle", "title", "subtitle", "showEnd", "endTitle", "endSubtitle"]

    PanelSwitch {
        editor: root.editor
        field: "showTitle"
        text: qsTr("Title card")
        tip: qsTr("Holds the first picture for 2.2 seconds under a title")
    }
    Column {
        width: parent.width
        spacing: Theme.s
        enabled: root.project.showTitle === true
        opacity: enabled ? 1 : 0.5

        PanelText {
            editor: root.editor
            field: "title"
            label: qsTr("Title")
            placeholderText: qsTr("Title")
            tip: qsTr("What the film is called")
        }
        PanelText {
            editor: root.editor
            field: "subtitle"
            label: qsTr("Second line of the title card")
            placeholderText: qsTr("Second line")
            tip: qsTr("Smaller, below it")
        }
    }
    PanelSection {
        PanelSwitch {
            editor: root.editor
            field: "showEnd"
            text: qsTr("End card")
            tip: qsTr("Holds the last picture for 2.8 seconds under a text")
        }
        Column {
            width: parent.width
            spacing: Theme.s
            enabled: root.project.showEnd === true
            opacity: enabled ? 1 : 0.5

            PanelText {
                editor: root.editor
                field: "endTitle"
                label: qsTr("Text of the end card")
                placeholderText: qsTr("Text")
                tip: qsTr("What the film ends with")
            }
            PanelText {
                editor: root.editor
                field: "endSubtitle"
                label: qsTr("Second line of the end card")
                placeholderText: qsTr("Second line")
                tip: qsTr("Smaller, below it; a web address, say")
            }
        }
    }
}
