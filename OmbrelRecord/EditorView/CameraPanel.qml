import QtQuick
import OmbrelRecord

/// The bubble in which the camera's picture stands.
InspectorPanel {
    id: root

    title: qsTr("Camera")
    fields: ["cameraShow", "cameraShape", "cameraSize", "cameraCorner", "cameraMirror", "cameraBorder",
             "cameraMakeRoom"]

    PanelSection {
        first: true
        visible: !root.editor.hasCamera
        hint: qsTr("This recording has no camera. Turn the camera on before you record to stand in your film.")
    }
    PanelSwitch {
        editor: root.editor
        field: "cameraShow"
        text: qsTr("Show the camera")
        tip: qsTr("Puts the camera's picture into a corner of the film")
        enabled: root.editor.hasCamera
    }
    PanelSection {
        enabled: root.editor.hasCamera && root.project.cameraShow === true

        PanelChoice {
            editor: root.editor
            field: "cameraShape"
            label: qsTr("Shape")
            model: [
                { value: "circle", text: qsTr("Circle"), tip: qsTr("A round bubble") },
                { value: "rounded", text: qsTr("Rounded"), tip: qsTr("A rectangle with round corners") }
            ]
        }
        PanelChoice {
            editor: root.editor
            field: "cameraCorner"
            label: qsTr("Corner")
            model: [
                { value: "tl", icon: "corner-tl", tip: qsTr("Top left") },
                { value: "tr", icon: "corner-tr", tip: qsTr("Top right") },
                { value: "bl", icon: "corner-bl", tip: qsTr("Bottom left") },
                { value: "br", icon: "corner-br", tip: qsTr("Bottom right") }
            ]
        }
        PanelSlider {
            editor: root.editor
            field: "cameraSize"
            label: qsTr("Size")
            tip: qsTr("How large the bubble is")
            from: 0.1
            to: 0.5
        }
        PanelSwitch {
            editor: root.editor
            field: "cameraMirror"
            text: qsTr("Mirror")
            tip: qsTr("As in a looking glass")
        }
        PanelSwitch {
            editor: root.editor
            field: "cameraBorder"
            text: qsTr("Border")
            tip: qsTr("A light line round the bubble")
        }
        PanelSwitch {
            editor: root.editor
            field: "cameraMakeRoom"
            text: qsTr("Make room while zoomed in")
            tip: qsTr("The bubble shrinks where it would cover what is shown")
        }
    }
}
