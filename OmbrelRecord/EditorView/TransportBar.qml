pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// Between preview and timeline: what was skipped, playing and its time, and the tools of the timeline.
Item {
    id: root

    required property EditorModel editor
    required property TimelineController hand
    /// −4 … 4: how fast the shuttle runs; 0 is at rest, 1 plays.
    property int shuttle: 0

    readonly property real frame: 1 / 60

    implicitHeight: 48

    function clock(seconds, tenths) {
        const shown = Math.max(0, tenths ? Math.round(seconds * 10) / 10 : Math.floor(seconds + 1e-6));
        const whole = Math.floor(shown + 1e-6);
        const two = value => (value < 10 ? "0" : "") + value;
        const text = whole >= 3600
            ? Math.floor(whole / 3600) + ":" + two(Math.floor(whole / 60) % 60) + ":" + two(whole % 60)
            : Math.floor(whole / 60) + ":" + two(whole % 60);
        return tenths ? text + "." + Math.round((shown - whole) * 10) % 10 : text;
    }
    function toggle() {
        shuttle = 0;
        if (editor.playing) editor.pause();
        else editor.play();
    }
    function go(seconds) {
        shuttle = 0;
        editor.pause();
        editor.seek(Math.max(0, Math.min(editor.outputDuration, seconds)));
        hand.revealPlayhead();
    }
    function step(frames) {
        // Onto the frames of the film, not from wherever the pointer happened to leave it.
        go((Math.round(editor.playhead / frame) + frames) * frame);
    }
    /// J, K and L: backwards, at rest, forwards; the same again goes faster.
    function drive(direction) {
        if (direction === 0) {
            shuttle = 0;
            editor.pause();
        } else if (direction > 0 && shuttle <= 0 && !editor.playing) {
            shuttle = 0;
            editor.play();
        } else {
            const now = editor.playing ? 1 : shuttle;
            editor.pause();
            shuttle = now * direction > 0 ? Math.max(-4, Math.min(4, now * 2)) : direction;
        }
    }

    Timer {
        running: root.shuttle !== 0
        interval: 60
        repeat: true
        onTriggered: {
            const to = root.editor.playhead + root.shuttle * interval / 1000;
            root.editor.seek(Math.max(0, Math.min(root.editor.outputDuration, to)));
            root.hand.revealPlayhead();
            if (to <= 0 || to >= root.editor.outputDuration)
                root.shuttle = 0;
        }
    }

    // What the film made of the recording.
    Row {
        anchors.left: parent.left
        anchors.leftMargin: Theme.l
        anchors.verticalCenter: parent.verticalCenter
        spacing: Theme.s

        Icon {
            anchors.verticalCenter: parent.verticalCenter
            name: "fast"
            size: 18
            color: root.editor.skippedCount > 0 ? Theme.speed : Theme.secondary
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            objectName: "summary"
            font: Theme.strong
            readonly property int cuts: root.editor.interiorCuts.length
            readonly property string skipped: root.editor.skippedCount === 1 ? qsTr("1 wait skipped")
                : root.editor.skippedCount > 1 ? qsTr("%1 waits skipped").arg(root.editor.skippedCount) : ""
            readonly property string cut: cuts === 1 ? qsTr("1 cut") : cuts > 1 ? qsTr("%1 cuts").arg(cuts) : ""
            text: skipped.length > 0 && cut.length > 0 ? qsTr("%1 · %2").arg(skipped).arg(cut)
                : skipped.length > 0 ? skipped : cut.length > 0 ? cut : qsTr("Nothing skipped")
        }
        Label {
            anchors.verticalCenter: parent.verticalCenter
            secondary: true
            text: qsTr("%1 → %2").arg(root.clock(root.editor.duration, false))
                .arg(root.clock(Math.round(root.editor.outputDuration), false))
        }
    }

    component Tool: IconButton {
        implicitWidth: 34
        implicitHeight: 34
        focusPolicy: Qt.TabFocus
        anchors.verticalCenter: parent ? parent.verticalCenter : undefined
    }

    // As on every player, in every language.
    Row {
        LayoutMirroring.enabled: false
        LayoutMirroring.childrenInherit: true
        anchors.centerIn: parent
        spacing: 2

        TimeText {
            anchors.verticalCenter: parent.verticalCenter
            text: root.clock(root.editor.playhead, true)
            font: Theme.lead
        }
        Item { width: Theme.m; height: 1 }
        Tool {
            iconName: "trim-start"
            tip: qsTr("To the beginning")
            keys: qsTr("Home")
            onClicked: root.go(0)
        }
        Tool {
            iconName: "step-back"
            tip: qsTr("One frame back")
            keys: "←"
            autoRepeat: true
            onClicked: root.step(-1)
        }
        IconButton {
            id: play
            objectName: "play"
            implicitWidth: 40
            implicitHeight: 40
            iconName: root.editor.playing ? "pause" : "play"
            iconSize: 22
            ink: Theme.text
            tip: root.editor.playing ? qsTr("Pause") : qsTr("Play")
            keys: qsTr("Space")
            focusPolicy: Qt.TabFocus
            anchors.verticalCenter: parent.verticalCenter
            onClicked: root.toggle()
            background: Rectangle {
                radius: width / 2
                color: play.down ? Theme.pressed : Theme.raised
                border.color: play.hovered ? Theme.outline : Theme.line
                FocusRing { shown: play.visualFocus; radius: 23 }
            }
        }
        Tool {
            iconName: "step-forward"
            tip: qsTr("One frame on")
            keys: "→"
            autoRepeat: true
            onClicked: root.step(1)
        }
        Tool {
            iconName: "trim-end"
            tip: qsTr("To the end")
            keys: qsTr("End")
            onClicked: root.go(root.editor.outputDuration)
        }
        Item { width: Theme.m; height: 1 }
        TimeText {
            anchors.verticalCenter: parent.verticalCenter
            text: root.clock(root.editor.outputDuration, true)
            font: Theme.lead
            color: Theme.secondary
        }
    }

    Row {
        anchors.right: parent.right
        anchors.rightMargin: Theme.m
        anchors.verticalCenter: parent.verticalCenter
        spacing: 2

        Tool {
            iconName: "split"
            tip: qsTr("Split at the playhead")
            keys: "S"
            onClicked: root.editor.split()
        }
        Tool {
            iconName: "zoom-out"
            tip: qsTr("Show more of the timeline")
            keys: "−"
            enabled: !root.hand.fits
            onClicked: root.hand.magnifyHere(1 / 1.5)
        }
        Slider {
            id: level
            anchors.verticalCenter: parent.verticalCenter
            width: 96
            implicitWidth: 96
            from: 0
            to: 1
            focusPolicy: Qt.TabFocus
            tip: qsTr("How large the timeline is shown")
            readonly property real largest: Math.max(1.001, root.hand.coarsest / root.hand.finest)
            onEdited: value => root.hand.magnifyHere(Math.pow(largest, value) / root.hand.magnification)
            Binding {
                target: level
                property: "value"
                value: Math.log(root.hand.magnification) / Math.log(level.largest)
            }
        }
        Tool {
            iconName: "zoom-in"
            tip: qsTr("Show less, larger")
            keys: "+"
            onClicked: root.hand.magnifyHere(1.5)
        }
        Tool {
            iconName: "zoom-fit"
            tip: qsTr("Show the whole recording")
            keys: "0"
            enabled: !root.hand.fits
            onClicked: root.hand.fit()
        }
    }
}
