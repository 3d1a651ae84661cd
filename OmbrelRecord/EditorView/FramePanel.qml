import QtQuick
import OmbrelRecord

/// How the recording stands on its background.
InspectorPanel {
    id: root

    title: qsTr("Frame")
    fields: ["padding", "radius", "shadow", "showClock"]

    PanelSlider {
        editor: root.editor
        field: "padding"
        label: qsTr("Padding")
        tip: qsTr("Room between the recording and the edge of the film")
        from: 0
        to: 0.12
        format: value => Math.round(value / 0.12 * 100) + " %"
    }
    PanelSlider {
        editor: root.editor
        field: "radius"
        label: qsTr("Corners")
        tip: qsTr("How round the recording's corners are")
        from: 0
        to: 2
        format: value => Math.round(value / 2 * 100) + " %"
    }
    PanelSlider {
        editor: root.editor
        field: "shadow"
        label: qsTr("Shadow")
        tip: qsTr("Lifts the recording off its background")
        from: 0
        to: 1
    }
    PanelSection {
        title: qsTr("Overlay")
        PanelSwitch {
            editor: root.editor
            field: "showClock"
            text: qsTr("Clock of the recording")
            tip: qsTr("Shows how much time has really passed, also where the film skips")
        }
    }
}
