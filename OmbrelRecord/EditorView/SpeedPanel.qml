pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// What the film plays faster, and the speed block that is selected.
InspectorPanel {
    id: root

    readonly property var selected: editor.selectedBlock
    readonly property var block: selected.kind === "speed" ? selected : null

    title: qsTr("Speed")
    fields: ["skipWaiting", "maxSpeed"]

    PanelSection {
        first: true
        visible: root.block !== null
        title: qsTr("Selected block")

        // Speeds are felt as ratios: the slider runs over their logarithm.
        Slider {
            id: speed
            width: parent.width
            label: qsTr("Speed")
            tip: qsTr("How fast this stretch plays")
            from: Math.log(0.25)
            to: Math.log(100)
            resetValue: 0
            focusPolicy: Qt.TabFocus
            format: value => root.pretty(Math.exp(value)) + "×"
            onPressedChanged: {
                if (pressed) root.editor.beginGesture();
                else root.editor.endGesture();
            }
            onEdited: value => {
                if (root.block)
                    root.editor.editSpeedBlock(root.block.id, root.block.start, root.block.end,
                                               root.pretty(Math.exp(value)));
            }
            Binding {
                target: speed
                property: "value"
                value: root.block ? Math.log(root.block.speed) : 0
                when: !speed.pressed
                restoreMode: Binding.RestoreNone
            }
        }
        Flow {
            width: parent.width
            spacing: 6

            Repeater {
                model: [0.5, 2, 4, 8, 16, 40]
                Chip {
                    required property real modelData
                    text: modelData + "×"
                    tip: qsTr("Play %1 times as fast").arg(modelData)
                    focusPolicy: Qt.TabFocus
                    checked: root.block !== null && Math.abs(root.block.speed - modelData) < 0.01
                    onClicked: root.editor.editSpeedBlock(root.block.id, root.block.start, root.block.end, modelData)
                }
            }
        }
        Button {
            width: parent.width
            kind: "danger"
            iconName: "trash"
            text: qsTr("Play as recorded")
            tip: qsTr("Removes this block")
            focusPolicy: Qt.TabFocus
            onClicked: root.editor.deleteSelection()
        }
    }
    PanelSection {
        first: root.block === null
        title: qsTr("Waiting")

        PanelSwitch {
            editor: root.editor
            field: "skipWaiting"
            text: qsTr("Skip waiting")
            tip: qsTr("Speeds through stretches in which you do nothing")
            enabled: !root.editor.ownSpeedBlocks
        }
        PanelSlider {
            editor: root.editor
            field: "maxSpeed"
            label: qsTr("Fastest")
            tip: qsTr("Waits are never played faster than this")
            from: 2
            to: 100
            stepSize: 1
            enabled: !root.editor.ownSpeedBlocks
            format: value => Math.round(value) + "×"
        }
    }
    PanelSection {
        visible: root.editor.ownSpeedBlocks
        hint: qsTr("You have changed the speeds yourself; they stay as they are.")
        Button {
            width: parent.width
            iconName: "sparkle"
            text: qsTr("Back to automatic speeds")
            tip: qsTr("Forgets your own speeds and finds the waits anew")
            focusPolicy: Qt.TabFocus
            onClicked: root.editor.resetSpeedBlocks()
        }
    }
    PanelSection {
        visible: !root.editor.ownSpeedBlocks
        hint: qsTr("Drag on the speed lane to play a stretch faster or slower.")
    }

    function pretty(value) {
        if (value < 2)
            return Math.max(0.25, Math.round(value * 20) / 20);
        return value < 10 ? Math.round(value * 2) / 2 : Math.round(value);
    }
}
