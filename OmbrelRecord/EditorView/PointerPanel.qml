import QtQuick
import OmbrelRecord

/// The pointer, drawn anew over the recording, and what a click does.
InspectorPanel {
    id: root

    title: qsTr("Pointer")
    fields: ["cursorStyle", "cursorSize", "cursorSmooth", "hideIdleCursor", "clickEffect", "clickBounce"]

    PanelChoice {
        editor: root.editor
        field: "cursorStyle"
        label: qsTr("Style")
        model: [
            { value: "arrow", text: qsTr("Dark"), tip: qsTr("A dark arrow with a light edge") },
            { value: "light", text: qsTr("Light"), tip: qsTr("A light arrow with a dark edge") },
            { value: "outline", text: qsTr("Outline"), tip: qsTr("Only the outline of an arrow") },
            { value: "dot", text: qsTr("Dot"), tip: qsTr("A round dot") }
        ]
    }
    PanelSlider {
        editor: root.editor
        field: "cursorSize"
        label: qsTr("Size")
        tip: qsTr("How large the pointer is drawn")
        from: 0.8
        to: 4
        format: value => value.toFixed(1) + "×"
    }
    PanelSection {
        title: qsTr("Movement")
        PanelSwitch {
            editor: root.editor
            field: "cursorSmooth"
            text: qsTr("Smooth movement")
            tip: qsTr("Takes the tremble out of the hand")
        }
        PanelSwitch {
            editor: root.editor
            field: "hideIdleCursor"
            text: qsTr("Hide while it rests")
            tip: qsTr("The pointer fades when it has not moved for a while")
        }
    }
    PanelSection {
        title: qsTr("Clicks")
        PanelChoice {
            editor: root.editor
            field: "clickEffect"
            label: qsTr("Effect")
            model: [
                { value: "ripple", text: qsTr("Ripple"), tip: qsTr("A wave runs out from the click") },
                { value: "ring", text: qsTr("Ring"), tip: qsTr("A ring closes round the click") },
                { value: "spotlight", text: qsTr("Glow"), tip: qsTr("A soft light around the click") },
                { value: "none", text: qsTr("None"), tip: qsTr("Clicks are not marked") }
            ]
        }
        PanelSlider {
            editor: root.editor
            field: "clickBounce"
            label: qsTr("Bounce")
            tip: qsTr("How much the pointer gives way on a click")
            from: 0
            to: 1
        }
    }
}
