pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// The recording from left to right: ruler, pictures, sound, activity, and the lanes of speed and zoom blocks.
/// A timeline runs from left to right in every language.
FocusScope {
    id: root

    required property EditorModel editor
    property alias hand: hand
    readonly property bool busy: film.busy
    readonly property int gutter: 44

    /// Asks for the panel that shows what is selected.
    signal panelWanted(string panel)
    /// The pointer was used: the keys are the editor's again, not a lane's.
    signal touched()

    implicitHeight: hand.height + 14
    LayoutMirroring.enabled: false
    LayoutMirroring.childrenInherit: true

    function slowestPaint() {
        return Math.max(film.slowestPaint, lanes.slowestPaint, ruler.slowestPaint);
    }

    TimelineController {
        id: hand
        editor: root.editor
        width: area.width
    }

    component Layer: TimelineLayer {
        controller: hand
        width: area.width
        font: Theme.tiny
        background: Theme.background
        surface: Theme.surface
        line: Theme.line
        text: Theme.text
        secondary: Theme.secondary
        accent: Theme.accent
        speed: Theme.speed
        zoom: Theme.zoom
        cut: Theme.cut
        speedHint: qsTr("Drag here to play a stretch faster or slower")
        zoomHint: qsTr("Drag here to zoom in on a stretch")
    }

    /// A row that the keyboard reaches.
    component LaneFocus: Item {
        id: lane

        property int zone: TimelineController.Film
        property string name
        property int count: 0
        readonly property bool ofBlocks: count >= 0

        x: -root.gutter + 6
        y: hand.rowTop(zone)
        width: area.width + root.gutter - 10
        height: hand.rowHeight(zone)
        activeFocusOnTab: true
        Accessible.role: Accessible.List
        Accessible.name: name
        Accessible.description: hand.selectionText
        Accessible.focusable: true

        Keys.onPressed: event => {
            const step = event.key === Qt.Key_Right ? 1 : event.key === Qt.Key_Left ? -1 : 0;
            event.accepted = true;
            if (!lane.ofBlocks)
                event.accepted = false;
            else if (step && (event.modifiers & Qt.ShiftModifier))
                hand.nudge(step * 0.1);
            else if (step && (event.modifiers & Qt.ControlModifier))
                hand.nudge(step * 0.1, 1);
            else if (step && (event.modifiers & Qt.AltModifier))
                hand.nudge(step * 0.1, -1);
            else if (step)
                hand.selectNeighbour(lane.zone, step);
            else if (event.key === Qt.Key_Up)
                hand.step(1);
            else if (event.key === Qt.Key_Down)
                hand.step(-1);
            else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter)
                hand.addAtPlayhead(lane.zone);
            else
                event.accepted = false;
        }

        FocusRing { shown: lane.activeFocus; around: 1 }
    }

    Item {
        id: gutterIcons
        width: root.gutter
        height: hand.height

        component LaneIcon: Icon {
            property int zone
            x: 14
            y: hand.rowTop(zone) + (hand.rowHeight(zone) - height) / 2
            size: 18
        }
        LaneIcon { zone: TimelineController.Film; name: "film"; color: Theme.secondary }
        LaneIcon {
            visible: root.editor.hasSound
            zone: TimelineController.Sound
            name: "waveform"
            color: Theme.secondary
        }
        LaneIcon { zone: TimelineController.Activity; name: "click"; color: Theme.secondary }
        LaneIcon { zone: TimelineController.Speed; name: "speed"; color: Theme.speed }
        LaneIcon { zone: TimelineController.Zoom; name: "zoom"; color: Theme.accentText }
    }

    Item {
        id: area
        objectName: "timelineArea"
        x: root.gutter
        width: root.width - root.gutter - 12
        height: hand.height

        Item {
            anchors.fill: parent
            clip: true

            Layer {
                id: ruler
                part: TimelineLayer.Ruler
                height: hand.rowHeight(TimelineController.Ruler)
            }
            Layer {
                id: film
                part: TimelineLayer.Film
                y: hand.rowTop(TimelineController.Film)
                height: hand.rowTop(TimelineController.Speed) - y - 4
            }
            Layer {
                id: lanes
                part: TimelineLayer.Lanes
                y: hand.rowTop(TimelineController.Speed)
                height: hand.height - y
            }

            // The range that is selected.
            Rectangle {
                visible: hand.selectionKind === "range"
                x: hand.selectionRect.x
                y: hand.selectionRect.y
                width: hand.selectionRect.width
                height: hand.selectionRect.height
                radius: 4
                color: Qt.alpha(Theme.accent, 0.22)
                border.color: Theme.accent
                border.width: 2

                Repeater {
                    model: 2
                    Rectangle {
                        required property int index
                        x: index === 0 ? -3 : parent.width - 3
                        y: hand.rowHeight(TimelineController.Film) / 2 - 11
                        width: 6
                        height: 22
                        radius: 3
                        color: "#FFFFFF"
                        border.color: Theme.accent
                    }
                }
            }

            // Where the pointer is.
            Rectangle {
                visible: hand.hoverX >= 0 && !hand.dragging
                x: Math.round(hand.hoverX)
                y: hand.rowHeight(TimelineController.Ruler)
                width: 1
                height: hand.height - y
                color: Theme.text
                opacity: 0.22
            }

            // What an edge sticks to.
            Item {
                visible: hand.snapX >= 0
                x: Math.round(hand.snapX)
                width: 1
                height: hand.height

                Repeater {
                    model: Math.ceil(hand.height / 6)
                    Rectangle {
                        required property int index
                        y: index * 6
                        width: 1
                        height: 4
                        color: Theme.good
                    }
                }
                Rectangle {
                    x: -3
                    y: hand.rowTop(TimelineController.Film) - 9
                    width: 7
                    height: 7
                    rotation: 45
                    color: Theme.good
                }
            }

            // The playhead.
            Item {
                x: Math.round(hand.playheadX)
                height: hand.height
                Accessible.ignored: true

                Rectangle {
                    x: -1
                    y: 12
                    width: 2
                    height: parent.height - y
                    color: Theme.record
                }
                Rectangle {
                    x: -6
                    y: 5
                    width: 12
                    height: 14
                    radius: 4
                    color: Theme.record
                }
            }
        }

        MouseArea {
            id: mouse
            anchors.fill: parent
            hoverEnabled: true
            acceptedButtons: Qt.LeftButton
            preventStealing: true
            cursorShape: hand.cursor
            onPressed: event => {
                root.touched();
                hand.press(event.x, event.y, event.modifiers & Qt.ShiftModifier);
                if (hand.selectionKind === "speed" || hand.selectionKind === "zoom")
                    root.panelWanted(hand.selectionKind);
            }
            onPositionChanged: event => {
                if (pressed)
                    hand.move(event.x, event.y, event.modifiers & Qt.AltModifier);
                else
                    hand.hover(event.x, event.y);
            }
            onReleased: event => {
                hand.release();
                hand.hover(event.x, event.y);
            }
            onCanceled: hand.cancel()
            onExited: hand.leave()
            onDoubleClicked: event => hand.doubleClick(event.x, event.y)
            onWheel: wheel => {
                const sideways = wheel.pixelDelta.x || wheel.angleDelta.x / 2;
                const along = wheel.pixelDelta.y || wheel.angleDelta.y / 2;
                if (wheel.modifiers & Qt.ShiftModifier)
                    hand.scroll(-(sideways || along));
                else if (Math.abs(sideways) > Math.abs(along))
                    hand.scroll(-sideways);
                else
                    hand.magnify(Math.pow(1.004, along), wheel.x);
            }
        }

        // What stands under the pointer, or what a drag makes.
        Rectangle {
            readonly property string words: hand.dragText.length > 0 ? hand.dragText : hand.hoverText

            visible: words.length > 0 && (hand.dragging || hand.hoverX >= 0)
            x: Math.max(0, Math.min(parent.width - width, Math.round(hand.hoverX - width / 2)))
            y: 1
            width: chip.implicitWidth + 14
            height: 20
            radius: 6
            color: hand.dragging ? Theme.accentFill : Theme.raised
            border.width: hand.dragging ? 0 : 1
            border.color: Theme.line

            TimeText {
                id: chip
                anchors.centerIn: parent
                font: Theme.tiny
                color: hand.dragging ? Theme.onFill : Theme.text
                text: parent.words
            }
        }

        LaneFocus {
            objectName: "filmLane"
            zone: TimelineController.Film
            count: -1
            name: qsTr("Film: the arrow keys step through it, [ and ] select a range")
        }
        LaneFocus {
            objectName: "speedLane"
            zone: TimelineController.Speed
            count: root.editor.speedBlockCount
            name: qsTr("Speed lane, %1 blocks").arg(count)
        }
        LaneFocus {
            objectName: "zoomLane"
            zone: TimelineController.Zoom
            count: root.editor.zoomBlockCount
            name: qsTr("Zoom lane, %1 blocks").arg(count)
        }

        SelectionBar {
            editor: root.editor
            hand: hand
            availableWidth: area.width
            onPanelWanted: panel => root.panelWanted(panel)
        }
    }

    // Which part shows, when it is not all of it.
    Item {
        x: area.x + 14
        y: hand.height + 4
        width: area.width - 28
        height: 8
        visible: !hand.fits

        Rectangle {
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width
            height: 4
            radius: 2
            color: Theme.line
        }
        Rectangle {
            id: thumb
            anchors.verticalCenter: parent.verticalCenter
            x: hand.start / root.editor.duration * parent.width
            width: Math.max(24, hand.shown / root.editor.duration * parent.width)
            height: 6
            radius: 3
            color: slide.containsMouse || slide.pressed ? Theme.secondary : Theme.outline
        }
        MouseArea {
            id: slide

            property real grab: 0

            anchors.fill: parent
            anchors.margins: -3
            hoverEnabled: true
            Accessible.role: Accessible.ScrollBar
            Accessible.name: qsTr("Scroll the timeline")
            onPressed: event => {
                const at = event.x - 3;
                grab = at >= thumb.x && at <= thumb.x + thumb.width ? at - thumb.x : thumb.width / 2;
                hand.start = (at - grab) / parent.width * root.editor.duration;
            }
            onPositionChanged: event => {
                if (pressed)
                    hand.start = (event.x - 3 - grab) / parent.width * root.editor.duration;
            }
        }
    }
}
