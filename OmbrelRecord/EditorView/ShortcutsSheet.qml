pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// The keys of the editor.
T.Popup {
    id: root

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    modal: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
    padding: Theme.xl
    width: Math.min(800, parent ? parent.width - 48 : 800)
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    T.Overlay.modal: Rectangle { color: Theme.scrim }
    enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.quick } }
    background: Rectangle {
        color: Theme.raised
        radius: Theme.radiusL
        border.color: Theme.line
        Shadow { radius: Theme.radiusL; reach: 30 }
    }

    readonly property var groups: [
        { title: qsTr("Playing"), keys: [
            [qsTr("Space"), qsTr("Play or pause")], ["J  K  L", qsTr("Back, stop, on; again for faster")],
            ["←  →", qsTr("One frame")], ["⇧ ←  ⇧ →", qsTr("One second")],
            [qsTr("Home  End"), qsTr("To the beginning or end")], ["?", qsTr("These keys")],
            [qsTr("F2  Delete"), qsTr("Rename or delete a look")]
        ] },
        { title: qsTr("Editing"), keys: [
            ["I  O", qsTr("The film starts or ends here")], ["[  ]", qsTr("Select from or to here")],
            ["S", qsTr("Split")], [qsTr("Delete"), qsTr("Cut or remove what is selected")],
            ["R", qsTr("Restore cuts in the selection")], [qsTr("Ctrl E"), qsTr("Export")],
            [qsTr("Ctrl Z"), qsTr("Undo")], [qsTr("Ctrl ⇧ Z"), qsTr("Redo")]
        ] },
        { title: qsTr("Timeline"), keys: [
            ["+  −  0", qsTr("Larger, smaller, all of it")], [qsTr("Wheel"), qsTr("Zoom at the pointer")],
            [qsTr("⇧ Wheel"), qsTr("Scroll")], [qsTr("Alt drag"), qsTr("Without snapping")],
            [qsTr("Esc"), qsTr("Give up a drag, clear the selection")]
        ] },
        { title: qsTr("In a lane"), keys: [
            ["←  →", qsTr("Select the next block")], [qsTr("Enter"), qsTr("Add a block at the playhead")],
            ["⇧ ←  ⇧ →", qsTr("Move it")], [qsTr("Ctrl ←  Ctrl →"), qsTr("Move its end")],
            ["↑  ↓", qsTr("Faster or closer, slower or wider")]
        ] }
    ]

    contentItem: FocusScope {
        implicitHeight: column.implicitHeight
        Accessible.role: Accessible.Dialog
        Accessible.name: qsTr("Keyboard shortcuts")

        Column {
            id: column
            width: parent.width
            spacing: Theme.xl

            Item {
                width: parent.width
                height: 28
                Label {
                    anchors.left: parent.left
                    anchors.verticalCenter: parent.verticalCenter
                    text: qsTr("Keyboard shortcuts")
                    font: Theme.title
                }
                IconButton {
                    anchors.right: parent.right
                    anchors.rightMargin: -8
                    anchors.verticalCenter: parent.verticalCenter
                    iconName: "close"
                    tip: qsTr("Close")
                    focus: true
                    onClicked: root.close()
                }
            }
            Grid {
                width: parent.width
                columns: 2
                columnSpacing: Theme.xxl
                rowSpacing: Theme.xl

                Repeater {
                    model: root.groups
                    Column {
                        id: group
                        required property var modelData
                        width: (parent.width - Theme.xxl) / 2
                        spacing: Theme.s

                        Label {
                            width: parent.width
                            text: group.modelData.title
                            font: Theme.strong
                            color: Theme.accentText
                        }
                        Repeater {
                            model: group.modelData.keys
                            Item {
                                id: entry
                                required property var modelData
                                width: parent.width
                                height: 24

                                Row {
                                    id: caps
                                    anchors.left: parent.left
                                    spacing: 4
                                    anchors.verticalCenter: parent.verticalCenter
                                    Repeater {
                                        model: entry.modelData[0].split("  ")
                                        Rectangle {
                                            id: cap
                                            required property string modelData
                                            width: Math.max(24, letters.implicitWidth + 12)
                                            height: 22
                                            radius: 6
                                            color: Theme.sunken
                                            border.color: Theme.line
                                            Text {
                                                id: letters
                                                anchors.centerIn: parent
                                                text: cap.modelData
                                                font: Theme.tiny
                                                color: Theme.text
                                            }
                                        }
                                    }
                                }
                                Label {
                                    anchors.left: parent.left
                                    anchors.leftMargin: 132
                                    anchors.right: parent.right
                                    horizontalAlignment: Text.AlignLeft
                                    anchors.verticalCenter: parent.verticalCenter
                                    secondary: true
                                    text: entry.modelData[1]
                                }
                            }
                        }
                    }
                }
            }
        }
    }
}
