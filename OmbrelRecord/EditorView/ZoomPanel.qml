pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// The camera that follows what happens, and the zoom block that is selected.
InspectorPanel {
    id: root

    property bool aiming: false
    readonly property var selected: editor.selectedBlock
    readonly property var block: selected.kind === "zoom" ? selected : null

    signal aimWanted(bool aim)

    title: qsTr("Zoom")
    fields: ["followAction", "maxZoom", "motion"]

    PanelSection {
        first: true
        visible: root.block !== null
        title: qsTr("Selected zoom")

        Slider {
            id: level
            width: parent.width
            label: qsTr("Level")
            tip: qsTr("How far this zoom goes in")
            from: 1
            to: 4
            resetValue: root.project.maxZoom
            focusPolicy: Qt.TabFocus
            format: value => value.toFixed(2) + "×"
            onPressedChanged: {
                if (pressed) root.editor.beginGesture();
                else root.editor.endGesture();
            }
            onEdited: value => { if (root.block) root.editor.editZoomBlock(root.block.id, { zoom: value }); }
            Binding {
                target: level
                property: "value"
                value: root.block ? root.block.zoom : 1
                when: !level.pressed
                restoreMode: Binding.RestoreNone
            }
        }
        Button {
            width: parent.width
            objectName: "aim"
            iconName: "zoom"
            checked: root.aiming
            text: root.aiming ? qsTr("Done aiming") : qsTr("Aim on the picture")
            tip: qsTr("Shows the whole screen; drag the frame to where the camera shall look")
            focusPolicy: Qt.TabFocus
            onClicked: root.aimWanted(!root.aiming)
        }
        Button {
            width: parent.width
            kind: "danger"
            iconName: "trash"
            text: qsTr("Remove this zoom")
            tip: qsTr("The camera does not go in here any more")
            focusPolicy: Qt.TabFocus
            onClicked: root.editor.deleteSelection()
        }
    }
    PanelSection {
        first: root.block === null
        title: qsTr("Camera")

        PanelSwitch {
            editor: root.editor
            field: "followAction"
            text: qsTr("Follow the action")
            tip: qsTr("Zooms in on clicks and on what changes, and back out by itself")
            enabled: !root.editor.ownZoomBlocks
        }
        PanelSlider {
            editor: root.editor
            field: "maxZoom"
            label: qsTr("Closest zoom")
            tip: qsTr("How far the camera goes in by itself")
            from: 1.35
            to: 3
            format: value => value.toFixed(2) + "×"
        }
        PanelChoice {
            editor: root.editor
            field: "motion"
            label: qsTr("Movement")
            model: [
                { value: "focused", text: qsTr("Focused"), tip: qsTr("Quick and to the point") },
                { value: "smooth", text: qsTr("Smooth"), tip: qsTr("Glides more slowly") }
            ]
        }
    }
    PanelSection {
        visible: root.editor.ownZoomBlocks
        hint: qsTr("You have changed the zooms yourself; they stay as they are.")
        Button {
            width: parent.width
            iconName: "sparkle"
            text: qsTr("Back to automatic zooms")
            tip: qsTr("Forgets your own zooms and plans them anew")
            focusPolicy: Qt.TabFocus
            onClicked: root.editor.resetZoomBlocks()
        }
    }
    PanelSection {
        visible: !root.editor.ownZoomBlocks
        hint: qsTr("Drag on the zoom lane to add a zoom, or select one to aim it.")
    }
}
