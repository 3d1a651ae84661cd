pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// The small bar beside what is selected on the timeline: what can be done with it.
Rectangle {
    id: root

    required property EditorModel editor
    required property TimelineController hand
    property real availableWidth

    readonly property string kind: hand.selectionKind
    readonly property rect target: hand.selectionRect
    readonly property var block: kind === "speed" || kind === "zoom" ? editor.selectedBlock : null
    readonly property bool inView: target.x + target.width > 0 && target.x < availableWidth

    signal panelWanted(string panel)

    visible: kind !== "none" && inView && !hand.dragging
    width: actions.implicitWidth + 8
    height: 34
    radius: Theme.radiusS + 2
    color: Theme.raised
    border.color: Theme.line
    x: Math.max(0, Math.min(availableWidth - width,
        Math.round(Math.max(target.x, 0) + (Math.min(target.x + target.width, availableWidth)
            - Math.max(target.x, 0)) / 2 - width / 2)))
    y: kind === "range" ? -5 : target.y - height - 4
    Accessible.role: Accessible.ToolBar
    Accessible.name: hand.selectionText

    Shadow { radius: Theme.radiusS; reach: 10 }
    // Keeps clicks beside the buttons from reaching the timeline.
    MouseArea { anchors.fill: parent; hoverEnabled: true }

    component Action: Button {
        kind: "quiet"
        implicitHeight: Theme.small
        leftPadding: text.length > 0 ? 8 : 6
        rightPadding: text.length > 0 ? 10 : 6
        spacing: 5
        focusPolicy: Qt.TabFocus
    }

    Row {
        id: actions
        anchors.centerIn: parent
        spacing: 2

        // A range.
        Action {
            visible: root.kind === "range" && root.hand.selectionInFilm
            iconName: "cut"
            text: qsTr("Cut")
            tip: qsTr("Take this stretch out of the film")
            keys: qsTr("Del")
            onClicked: root.hand.cutSelection()
        }
        Action {
            visible: root.kind === "range" && root.hand.selectionInFilm
            iconName: "fast"
            text: qsTr("Speed up")
            tip: qsTr("Play this stretch four times as fast")
            onClicked: {
                root.hand.speedUpSelection();
                root.panelWanted("speed");
            }
        }
        Action {
            visible: root.kind === "range" && root.hand.selectionInFilm
            iconName: "zoom-in"
            text: qsTr("Add zoom")
            tip: qsTr("Zoom in on what happens in this stretch")
            onClicked: {
                root.hand.zoomSelection();
                root.panelWanted("zoom");
            }
        }
        Action {
            visible: root.kind === "range" && root.hand.selectionRestorable
            iconName: "restore"
            text: qsTr("Restore")
            tip: qsTr("Bring back what was cut in this stretch")
            onClicked: root.hand.restoreSelection()
        }

        // A block.
        Action {
            visible: root.block !== null
            iconName: "minus"
            tip: root.kind === "speed" ? qsTr("Slower") : qsTr("Zoom out")
            onClicked: root.hand.step(-1)
        }
        Text {
            visible: root.block !== null
            anchors.verticalCenter: parent.verticalCenter
            width: Math.max(implicitWidth, 40)
            horizontalAlignment: Text.AlignHCenter
            font: Theme.strong
            color: Theme.text
            text: {
                if (!root.block)
                    return "";
                const value = root.kind === "speed" ? root.block.speed : root.block.zoom;
                return (Math.round(value * 100) / 100) + "×";
            }
        }
        Action {
            visible: root.block !== null
            iconName: "plus"
            tip: root.kind === "speed" ? qsTr("Faster") : qsTr("Zoom in further")
            onClicked: root.hand.step(1)
        }
        Action {
            visible: root.block !== null
            iconName: "trash"
            tip: root.kind === "speed" ? qsTr("Play this stretch as it was recorded") : qsTr("Remove this zoom")
            keys: qsTr("Del")
            onClicked: root.editor.deleteSelection()
        }
        Action {
            iconName: "close"
            tip: qsTr("Clear the selection")
            keys: qsTr("Esc")
            onClicked: root.editor.selectNothing()
        }
    }
}
