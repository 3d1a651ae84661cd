import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// A value between two ends. With a `label` it is a block of 46 points: name and value above the track. A
/// double click, or Backspace, sets it back to `resetValue`. `edited` is sent for every value the user gives,
/// `finished` when the hand lets go.
T.Slider {
    id: control

    property string label
    property string tip
    property real resetValue: NaN
    /// Turns a value into its text.
    property var format: function (value) { return Math.round(value * 100) + " %"; }
    readonly property string valueText: format(value) // qmllint disable

    signal edited(real value)
    signal finished()

    function reset() {
        if (isNaN(resetValue) || value === resetValue) return;
        value = resetValue;
        edited(value);
        finished();
    }

    padding: 0
    topPadding: label.length > 0 ? 24 : 0
    implicitWidth: 160
    implicitHeight: topPadding + 20
    hoverEnabled: true
    live: true
    focusPolicy: Qt.StrongFocus
    wheelEnabled: false
    onMoved: edited(value)
    onPressedChanged: if (!pressed) released()

    property bool byPointer: false
    property double lastRelease: 0
    property real lastPlace: -1

    // The slider keeps the pointer to itself, so it counts its clicks on its own.
    function released() {
        const now = Date.now();
        const again = byPointer && now - lastRelease < Qt.styleHints.mouseDoubleClickInterval // qmllint disable type
            && Math.abs(position - lastPlace) < 0.04;
        lastRelease = now;
        lastPlace = position;
        if (again && !isNaN(resetValue) && value !== resetValue)
            reset();
        else
            finished();
    }

    Accessible.role: Accessible.Slider
    Accessible.name: label.length > 0 ? label : tip
    Accessible.description: valueText + (tip.length > 0 ? ". " + tip : "")

    PointHandler {
        onActiveChanged: if (active) control.byPointer = true
    }
    Keys.onPressed: event => {
        control.byPointer = false;
        if (event.key === Qt.Key_Backspace || event.key === Qt.Key_Delete) {
            control.reset();
            event.accepted = true;
        }
    }

    Label {
        visible: control.label.length > 0
        text: control.label
        enabled: control.enabled
        Accessible.ignored: true
        anchors { left: parent.left; right: shownValue.left; rightMargin: 8; top: parent.top }
    }
    Label {
        id: shownValue
        visible: control.label.length > 0
        text: control.valueText
        secondary: true
        enabled: control.enabled
        Accessible.ignored: true
        anchors { right: parent.right; top: parent.top }
    }

    background: Item {
        y: control.topPadding
        width: control.width
        height: 20

        Rectangle {
            id: track
            y: 8
            width: parent.width
            height: 4
            radius: 2
            color: Theme.dark ? "#3A404D" : "#D3D7DF"
        }
        Rectangle {
            // Grows from the value that means nothing, where the range has a zero inside.
            readonly property real origin: control.from < 0 && control.to > 0
                ? -control.from / (control.to - control.from) : 0
            readonly property real low: Math.min(origin, control.position)
            readonly property real high: Math.max(origin, control.position)

            x: control.mirrored ? (1 - high) * track.width : low * track.width
            y: 8
            width: (high - low) * track.width
            height: 4
            radius: 2
            color: control.enabled ? Theme.accent : Theme.disabled
        }
    }

    handle: Rectangle {
        x: control.visualPosition * (control.width - width)
        y: control.topPadding + 2
        width: 16
        height: 16
        radius: 8
        color: control.enabled ? "#FFFFFF" : Theme.disabled
        border.width: 1
        border.color: Theme.dark ? "#0E0F13" : "#A9B0BD"
        scale: control.pressed ? 1.15 : 1
        Behavior on scale { NumberAnimation { duration: Theme.quick } }

        FocusRing { shown: control.visualFocus; radius: 11 }
    }

    Tooltip { text: control.tip; shown: control.hovered && !control.pressed }
}
