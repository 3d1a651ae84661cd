// Not bound: a Loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified
import QtQuick
import OmbrelRecord

/// One panel at a time, chosen by the icons on the outer edge.
FocusScope {
    id: root

    required property EditorModel editor
    property string panel: "looks"
    property string aim
    readonly property var panels: [
        { name: "looks", icon: "palette", text: qsTr("Looks") },
        { name: "format", icon: "format-wide", text: qsTr("Format") },
        { name: "background", icon: "backdrop", text: qsTr("Background") },
        { name: "frame", icon: "frame", text: qsTr("Frame") },
        { name: "pointer", icon: "pointer", text: qsTr("Pointer") },
        { name: "zoom", icon: "zoom", text: qsTr("Zoom") },
        { name: "speed", icon: "speed", text: qsTr("Speed") },
        { name: "camera", icon: "bubble", text: qsTr("Camera") },
        { name: "captions", icon: "captions", text: qsTr("Captions") },
        { name: "cards", icon: "cards", text: qsTr("Cards") },
        { name: "crop", icon: "crop", text: qsTr("Crop") }
    ]
    readonly property InspectorPanel current: loader.item as InspectorPanel
    readonly property bool busy: current?.busy ?? false

    signal aimWanted(string what)

    implicitWidth: 320

    Rectangle {
        anchors.fill: parent
        color: Theme.surface
    }
    Hairline {
        vertical: true
        height: parent.height
    }

    Loader {
        id: loader
        anchors.left: parent.left
        width: parent.width - rail.width
        height: parent.height
        sourceComponent: ({
            looks: looks, format: format, background: background, frame: frame, pointer: pointer, zoom: zoom,
            speed: speed, camera: camera, captions: captions, cards: cards, crop: crop
        })[root.panel]
    }

    Component { id: looks; LooksPanel { editor: root.editor } }
    Component { id: format; FormatPanel { editor: root.editor } }
    Component { id: background; BackgroundPanel { editor: root.editor } }
    Component { id: frame; FramePanel { editor: root.editor } }
    Component { id: pointer; PointerPanel { editor: root.editor } }
    Component {
        id: zoom
        ZoomPanel {
            editor: root.editor
            aiming: root.aim === "zoom"
            onAimWanted: aim => root.aimWanted(aim ? "zoom" : "")
        }
    }
    Component { id: speed; SpeedPanel { editor: root.editor } }
    Component { id: camera; CameraPanel { editor: root.editor } }
    Component { id: captions; CaptionsPanel { editor: root.editor } }
    Component { id: cards; CardsPanel { editor: root.editor } }
    Component {
        id: crop
        CropPanel {
            editor: root.editor
            cropping: root.aim === "crop"
            onCropWanted: crop => root.aimWanted(crop ? "crop" : "")
        }
    }

    Item {
        id: rail
        anchors.right: parent.right
        width: 48
        height: parent.height
        Accessible.role: Accessible.PageTabList
        Accessible.name: qsTr("Panels")

        Hairline {
            vertical: true
            height: parent.height
        }
        Column {
            id: tabs
            anchors.horizontalCenter: parent.horizontalCenter
            y: Theme.s
            // All of them stay in reach in a low window.
            readonly property real each: Math.max(28, Math.min(40, (rail.height - 2 * Theme.s) / root.panels.length))

            Repeater {
                model: root.panels
                Item {
                    id: slot
                    required property var modelData
                    required property int index
                    width: 40
                    height: tabs.each

                    IconButton {
                        anchors.centerIn: parent
                        objectName: "panel-" + slot.modelData.name
                        width: 36
                        height: Math.min(36, parent.height)
                        iconName: slot.modelData.icon
                        tip: slot.modelData.text
                        checked: root.panel === slot.modelData.name
                        focusPolicy: Qt.TabFocus
                        Accessible.role: Accessible.PageTab
                        Accessible.checked: checked
                        onClicked: root.panel = slot.modelData.name
                        Keys.onDownPressed: nextItemInFocusChain(true).forceActiveFocus(Qt.TabFocusReason)
                        Keys.onUpPressed: nextItemInFocusChain(false).forceActiveFocus(Qt.TabFocusReason)
                    }
                }
            }
        }
    }
}
