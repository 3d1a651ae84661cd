pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// The editor of one recording: the film in the middle, what it looks like at its side, its time below.
FocusScope {
    id: root

    required property EditorModel editor
    property alias panel: inspector.panel
    /// "", "crop" or "zoom": what is being aimed on the picture.
    property string aim
    property alias timeline: timeline
    property alias exportSheet: sheet
    property alias shortcutsSheet: help
    readonly property bool busy: timeline.busy || !preview.ready || inspector.busy

    signal backRequested()

    focus: true

    readonly property var selection: editor.selection
    readonly property string selected: selection.kind
    onSelectedChanged: if (selected !== "zoom" && aim === "zoom") aim = ""
    onPanelChanged: if ((aim === "crop" && panel !== "crop") || (aim === "zoom" && panel !== "zoom")) aim = ""

    Connections {
        target: root.editor
        function onPlayingChanged() {
            if (root.editor.playing)
                root.aim = "";
        }
    }

    // Keys that no control took for itself.
    Keys.onPressed: event => {
        const shift = event.modifiers & Qt.ShiftModifier;
        const control = event.modifiers & Qt.ControlModifier;
        event.accepted = true;
        if (control) {
            if (event.key === Qt.Key_Z && shift || event.key === Qt.Key_Y)
                editor.redo();
            else if (event.key === Qt.Key_Z)
                editor.undo();
            else if (event.key === Qt.Key_E)
                sheet.open();
            else
                event.accepted = false;
            return;
        }
        switch (event.key) {
        case Qt.Key_Space: transport.toggle(); break;
        case Qt.Key_J: transport.drive(-1); break;
        case Qt.Key_K: transport.drive(0); break;
        case Qt.Key_L: transport.drive(1); break;
        case Qt.Key_Left: shift ? transport.go(editor.playhead - 1) : transport.step(-1); break;
        case Qt.Key_Right: shift ? transport.go(editor.playhead + 1) : transport.step(1); break;
        case Qt.Key_Home: transport.go(0); break;
        case Qt.Key_End: transport.go(editor.outputDuration); break;
        case Qt.Key_I: editor.markStart(); break;
        case Qt.Key_O: editor.markEnd(); break;
        case Qt.Key_S: editor.split(); break;
        case Qt.Key_R: timeline.hand.restoreSelection(); break;
        case Qt.Key_BracketLeft: timeline.hand.selectFromPlayhead(); break;
        case Qt.Key_BracketRight: timeline.hand.selectToPlayhead(); break;
        case Qt.Key_Delete:
        case Qt.Key_Backspace: editor.deleteSelection(); break;
        case Qt.Key_Plus:
        case Qt.Key_Equal: timeline.hand.magnifyHere(1.5); break;
        case Qt.Key_Minus: timeline.hand.magnifyHere(1 / 1.5); break;
        case Qt.Key_0: timeline.hand.fit(); break;
        case Qt.Key_Question:
        case Qt.Key_F1: help.open(); break;
        case Qt.Key_Escape:
            if (timeline.hand.cancel()) break;
            if (aim.length > 0) { aim = ""; rest.forceActiveFocus(); break; }
            if (editor.selection.kind !== "none") { editor.selectNothing(); break; }
            rest.forceActiveFocus();
            break;
        default: event.accepted = false;
        }
    }

    // Has the focus while no control has it.
    Item {
        id: rest
        focus: true
    }
    Rectangle {
        anchors.fill: parent
        color: Theme.background
    }

    EditorTopBar {
        id: bar
        width: parent.width
        editor: root.editor
        exporting: sheet.queue.state === ExportQueue.Working
        exportProgress: sheet.queue.progress
        exportOutcome: sheet.outcome
        exportFailed: sheet.phase === ExportQueue.Failed
        onBackRequested: root.backRequested()
        onExportRequested: sheet.open()
        onHelpRequested: help.open()
    }

    PreviewPane {
        id: preview
        anchors.top: bar.bottom
        anchors.bottom: below.top
        anchors.left: parent.left
        anchors.right: inspector.left
        editor: root.editor
        aim: root.aim
        onAimDone: {
            root.aim = "";
            rest.forceActiveFocus();
        }
    }

    Inspector {
        id: inspector
        anchors.top: bar.bottom
        anchors.bottom: below.top
        anchors.right: parent.right
        width: 320
        editor: root.editor
        aim: root.aim
        onAimWanted: what => {
            if (what.length > 0)
                root.editor.pause();
            root.aim = what;
        }
    }

    FocusScope {
        id: below
        anchors.bottom: parent.bottom
        width: parent.width
        height: transport.height + timeline.height + Theme.s

        Rectangle {
            anchors.fill: parent
            color: Theme.surface
        }
        Hairline { width: parent.width }

        TransportBar {
            id: transport
            width: parent.width
            editor: root.editor
            hand: timeline.hand
        }
        TimelineView {
            id: timeline
            anchors.top: transport.bottom
            width: parent.width
            height: implicitHeight
            editor: root.editor
            onPanelWanted: panel => root.panel = panel
            onTouched: rest.forceActiveFocus()
        }
    }

    ExportSheet {
        id: sheet
        editor: root.editor
    }
    ShortcutsSheet { id: help }
}
