pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// The whole screen with a frame on it, to be dragged: what is cropped, or where a zoom looks. `frame` and
/// `region` are normalised to the recording; `edited` carries the new frame.
FocusScope {
    id: root

    required property EditorModel editor
    /// What of the recording is shown: all of it, or the crop while a zoom is aimed.
    property rect region: Qt.rect(0, 0, 1, 1)
    /// Normalised to `region`.
    property rect frame: Qt.rect(0, 0, 1, 1)
    /// A frame whose shape stays: corners change its size around its middle.
    property bool keepsShape: false
    property real smallest: 0.1
    property string name
    property string hint
    property real time: 0
    readonly property alias ready: still.ready
    /// Whether the keyboard was used last: only then does the focus show.
    property bool byKeys: false

    signal begun()
    signal edited(rect frame)
    signal finished()
    signal closeWanted()

    readonly property real aspect: editor.sourceSize.width * region.width
        / Math.max(1, editor.sourceSize.height * region.height)
    readonly property rect picture: {
        const w = Math.round(Math.min(width, height * aspect));
        const h = Math.round(w / aspect);
        return Qt.rect(Math.round((width - w) / 2), Math.round((height - h) / 2), w, h);
    }

    function limited(x, y, w, h) {
        w = Math.min(1, Math.max(smallest, w));
        h = Math.min(1, Math.max(smallest, h));
        return Qt.rect(Math.max(0, Math.min(1 - w, x)), Math.max(0, Math.min(1 - h, y)), w, h);
    }
    /// `dx`, `dy` normalised; `left` … say which edges move.
    function resized(from, edges, dx, dy) {
        if (keepsShape) {
            // Around the middle: the corner follows the pointer as far as the shape lets it.
            const sx = edges.indexOf("l") >= 0 ? -1 : 1;
            const sy = edges.indexOf("t") >= 0 ? -1 : 1;
            const factor = Math.max((from.width / 2 + sx * dx) / (from.width / 2),
                                    (from.height / 2 + sy * dy) / (from.height / 2));
            const least = smallest / Math.min(from.width, from.height);
            const most = Math.min(1 / from.width, 1 / from.height);
            const f = Math.max(least, Math.min(most, factor));
            const w = from.width * f, h = from.height * f;
            return limited(from.x + from.width / 2 - w / 2, from.y + from.height / 2 - h / 2, w, h);
        }
        let l = from.x, t = from.y, r = from.x + from.width, b = from.y + from.height;
        if (edges.indexOf("l") >= 0) l = Math.max(0, Math.min(r - smallest, l + dx));
        if (edges.indexOf("r") >= 0) r = Math.min(1, Math.max(l + smallest, r + dx));
        if (edges.indexOf("t") >= 0) t = Math.max(0, Math.min(b - smallest, t + dy));
        if (edges.indexOf("b") >= 0) b = Math.min(1, Math.max(t + smallest, b + dy));
        return Qt.rect(l, t, r - l, b - t);
    }
    /// Between two points of a drag.
    function drawn(x, y, toX, toY) {
        const within = v => Math.max(0, Math.min(1, v));
        const l = within(Math.min(x, toX)), t = within(Math.min(y, toY));
        return limited(l, t, within(Math.max(x, toX)) - l, within(Math.max(y, toY)) - t);
    }
    function nudge(dx, dy, grow) {
        begun();
        edited(grow !== 0 ? (keepsShape ? resized(frame, "br", grow, grow)
                                        : limited(frame.x, frame.y, frame.width + dx, frame.height + dy))
                          : limited(frame.x + dx, frame.y + dy, frame.width, frame.height));
        finished();
    }

    LayoutMirroring.enabled: false
    LayoutMirroring.childrenInherit: true
    activeFocusOnTab: true
    Accessible.role: Accessible.Graphic
    Accessible.name: name
    Accessible.description: hint
    Accessible.focusable: true

    Keys.onPressed: event => {
        byKeys = true;
        const grow = event.modifiers & Qt.ShiftModifier;
        const dx = event.key === Qt.Key_Right ? 0.01 : event.key === Qt.Key_Left ? -0.01 : 0;
        const dy = event.key === Qt.Key_Down ? 0.01 : event.key === Qt.Key_Up ? -0.01 : 0;
        if (dx || dy) {
            nudge(dx, dy, grow ? (dx || -dy) : 0);
            event.accepted = true;
        } else if (event.key === Qt.Key_Return || event.key === Qt.Key_Enter || event.key === Qt.Key_Escape) {
            closeWanted();
            event.accepted = true;
        }
    }

    SourceStill {
        id: still
        x: root.picture.x
        y: root.picture.y
        width: root.picture.width
        height: root.picture.height
        editor: root.editor
        time: root.time
        region: root.region
    }

    Item {
        id: board
        x: root.picture.x
        y: root.picture.y
        width: root.picture.width
        height: root.picture.height

        // On whole pixels: between the shades there shall be no seams.
        readonly property rect box: {
            const left = Math.round(root.frame.x * width), top = Math.round(root.frame.y * height);
            return Qt.rect(left, top, Math.round((root.frame.x + root.frame.width) * width) - left,
                           Math.round((root.frame.y + root.frame.height) * height) - top);
        }

        // What is outside is dimmed, in four parts: the picture inside stays as it is.
        component Shade: Rectangle { color: "#9C06070A" }
        Shade { width: parent.width; height: board.box.y }
        Shade { y: board.box.y + board.box.height; width: parent.width; height: parent.height - y }
        Shade { y: board.box.y; width: board.box.x; height: board.box.height }
        Shade {
            x: board.box.x + board.box.width
            y: board.box.y
            width: parent.width - x
            height: board.box.height
        }

        MouseArea {
            id: body

            property rect from
            property point at
            /// A frame around everything cannot be moved: there a new one is drawn.
            property bool draws: false
            readonly property bool everything: !root.keepsShape && root.frame.width >= 1 && root.frame.height >= 1

            x: board.box.x
            y: board.box.y
            width: board.box.width
            height: board.box.height
            cursorShape: pressed ? (draws ? Qt.CrossCursor : Qt.ClosedHandCursor)
                                 : everything ? Qt.CrossCursor : Qt.OpenHandCursor
            preventStealing: true
            onPressed: event => {
                root.forceActiveFocus(Qt.MouseFocusReason);
                root.byKeys = false;
                from = root.frame;
                at = mapToItem(board, event.x, event.y);
                draws = everything;
                root.begun();
            }
            onPositionChanged: event => {
                const now = mapToItem(board, event.x, event.y);
                if (draws) {
                    // A click that slips a little draws nothing.
                    if (everything && Math.max(Math.abs(now.x - at.x), Math.abs(now.y - at.y)) < 12)
                        return;
                    root.edited(root.drawn(at.x / board.width, at.y / board.height,
                                           now.x / board.width, now.y / board.height));
                    return;
                }
                root.edited(root.limited(from.x + (now.x - at.x) / board.width, from.y + (now.y - at.y) / board.height,
                                         from.width, from.height));
            }
            onReleased: root.finished()
            onCanceled: root.finished()
        }

        Rectangle {
            x: board.box.x - 1
            y: board.box.y - 1
            width: board.box.width + 2
            height: board.box.height + 2
            color: "transparent"
            border.color: "#FFFFFF"
            border.width: 2

            // Thirds, faint.
            Repeater {
                model: 4
                Rectangle {
                    required property int index
                    readonly property bool upright: index < 2
                    x: upright ? parent.width * (index + 1) / 3 : 2
                    y: upright ? 2 : parent.height * (index - 1) / 3
                    width: upright ? 1 : parent.width - 4
                    height: upright ? parent.height - 4 : 1
                    color: "#FFFFFF"
                    opacity: body.pressed || body.containsMouse ? 0.35 : 0.18
                }
            }
        }

        Repeater {
            model: root.keepsShape ? ["tl", "tr", "bl", "br"] : ["tl", "tr", "bl", "br", "l", "r", "t", "b"]
            MouseArea {
                id: corner

                required property string modelData
                property rect from
                property point at
                readonly property real cx: modelData.indexOf("l") >= 0 ? board.box.x
                    : modelData.indexOf("r") >= 0 ? board.box.x + board.box.width : board.box.x + board.box.width / 2
                readonly property real cy: modelData.indexOf("t") >= 0 ? board.box.y
                    : modelData.indexOf("b") >= 0 ? board.box.y + board.box.height : board.box.y + board.box.height / 2

                x: cx - 14
                y: cy - 14
                width: 28
                height: 28
                preventStealing: true
                cursorShape: modelData === "l" || modelData === "r" ? Qt.SizeHorCursor
                    : modelData === "t" || modelData === "b" ? Qt.SizeVerCursor
                    : modelData === "tl" || modelData === "br" ? Qt.SizeFDiagCursor : Qt.SizeBDiagCursor
                onPressed: event => {
                    from = root.frame;
                    at = mapToItem(board, event.x, event.y);
                    root.begun();
                }
                onPositionChanged: event => {
                    const now = mapToItem(board, event.x, event.y);
                    root.edited(root.resized(from, modelData, (now.x - at.x) / board.width,
                                             (now.y - at.y) / board.height));
                }
                onReleased: root.finished()
                onCanceled: root.finished()

                Rectangle {
                    anchors.centerIn: parent
                    width: corner.modelData === "t" || corner.modelData === "b" ? 22 : corner.modelData.length === 2 ? 12 : 6
                    height: corner.modelData === "l" || corner.modelData === "r" ? 22 : corner.modelData.length === 2 ? 12 : 6
                    radius: 3
                    color: "#FFFFFF"
                    border.color: Theme.accentFill
                    border.width: 2
                }
            }
        }
    }

    FocusRing {
        anchors.fill: board
        around: 4
        shown: root.activeFocus && root.byKeys && !body.pressed
    }

    Rectangle {
        anchors.horizontalCenter: parent.horizontalCenter
        y: root.picture.y + root.picture.height - height - 14
        width: row.implicitWidth + 24
        height: 40
        radius: 20
        color: Theme.overPicture

        Row {
            id: row
            anchors.centerIn: parent
            spacing: Theme.m
            Text {
                anchors.verticalCenter: parent.verticalCenter
                text: root.hint
                font: Theme.body
                color: Theme.onFill
            }
            Button {
                anchors.verticalCenter: parent.verticalCenter
                implicitHeight: Theme.small
                kind: "filled"
                text: qsTr("Done")
                tip: qsTr("Back to the film")
                keys: qsTr("Return")
                focusPolicy: Qt.TabFocus
                onClicked: root.closeWanted()
            }
        }
    }
}
