pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// Making the films: in which formats, how large, how far it is, and what to do with them.
T.Popup {
    id: root

    required property EditorModel editor
    readonly property var project: editor.project
    property alias queue: queue
    property var chosen: [project.format]
    property real scale_: 1
    property real rate: 60
    readonly property int phase: queue.state
    /// The work has ended while the sheet was put away.
    property bool unseen: false
    readonly property string outcome: !unseen ? "" : phase === ExportQueue.Failed ? qsTr("The export stopped")
        : queue.films.length === 1 ? qsTr("Your film is ready") : qsTr("Your films are ready")

    readonly property var formats: [
        { value: "16:9", name: qsTr("YouTube"), w: 1920, h: 1080, icon: "format-wide" },
        { value: "4:5", name: qsTr("X"), w: 1080, h: 1350, icon: "format-portrait" },
        { value: "9:16", name: qsTr("Shorts"), w: 1080, h: 1920, icon: "format-story" },
        { value: "1:1", name: qsTr("Square"), w: 1080, h: 1080, icon: "format-square" }
    ]

    function sizeText(bytes) {
        const mega = bytes / 1e6;
        return mega < 1 ? qsTr("under 1 MB") : mega < 10 ? qsTr("%1 MB").arg(mega.toFixed(1))
            : mega < 1000 ? qsTr("%1 MB").arg(Math.round(mega)) : qsTr("%1 GB").arg((mega / 1000).toFixed(1));
    }
    function leftText(seconds) {
        if (seconds < 0)
            return qsTr("Working out how long it takes…");
        if (seconds < 5)
            return qsTr("A few seconds left");
        if (seconds < 55)
            return qsTr("About %1 seconds left").arg(Math.ceil(seconds / 5) * 5);
        const minutes = Math.round(seconds / 60);
        return minutes <= 1 ? qsTr("About a minute left") : qsTr("About %1 minutes left").arg(minutes);
    }
    function toggle(format) {
        const list = chosen.slice();
        const at = list.indexOf(format);
        if (at >= 0) list.splice(at, 1);
        else list.push(format);
        chosen = formats.map(each => each.value).filter(each => list.indexOf(each) >= 0);
    }
    function begin() {
        if (chosen.length > 0)
            queue.start(chosen, scale_, rate);
    }

    onPhaseChanged: unseen = !opened && (phase === ExportQueue.Done || phase === ExportQueue.Failed)
    onAboutToShow: {
        if (queue.state !== ExportQueue.Working && !unseen) {
            queue.clear();
            chosen = [project.format];
        }
        unseen = false;
    }
    onOpened: (queue.state === ExportQueue.Idle ? go : contentItem).forceActiveFocus(Qt.TabFocusReason)

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    modal: true
    focus: true
    // While it works the sheet can be put away; the work goes on and the button shows it.
    closePolicy: T.Popup.CloseOnEscape
    padding: Theme.xl
    width: 480
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    T.Overlay.modal: Rectangle { color: Theme.scrim }
    enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.quick } }
    exit: Transition { NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.quick } }
    background: Rectangle {
        color: Theme.raised
        radius: Theme.radiusL
        border.color: Theme.line
        Shadow { radius: Theme.radiusL; reach: 30 }
    }

    ExportQueue {
        id: queue
        editor: root.editor
    }

    contentItem: FocusScope {
        implicitHeight: column.implicitHeight
        Accessible.role: Accessible.Dialog
        Accessible.name: heading.text

        Column {
            id: column
            width: parent.width
            spacing: Theme.l

            Item {
                width: parent.width
                height: 28

                Label {
                    id: heading
                    anchors.left: parent.left
                    anchors.verticalCenter: parent.verticalCenter
                    font: Theme.title
                    text: root.phase === ExportQueue.Idle ? qsTr("Export")
                        : root.phase === ExportQueue.Working ? (queue.cancelling ? qsTr("Stopping…") : qsTr("Exporting"))
                        : root.phase === ExportQueue.Done ? (queue.films.length === 1 ? qsTr("Your film is ready")
                                                                                     : qsTr("Your films are ready"))
                        : qsTr("The export stopped")
                }
                IconButton {
                    anchors.right: parent.right
                    anchors.rightMargin: -8
                    anchors.verticalCenter: parent.verticalCenter
                    iconName: "close"
                    tip: root.phase === ExportQueue.Working ? qsTr("Go on in the background") : qsTr("Close")
                    focusPolicy: Qt.TabFocus
                    onClicked: root.close()
                }
            }

            // Choosing.
            Grid {
                visible: root.phase === ExportQueue.Idle
                width: parent.width
                columns: 2
                spacing: Theme.s

                Repeater {
                    model: root.formats
                    OptionRow {
                        required property var modelData
                        width: (parent.width - Theme.s) / 2
                        box: true
                        title: modelData.name
                        detail: qsTr("%1 × %2").arg(Math.round(modelData.w * root.scale_))
                            .arg(Math.round(modelData.h * root.scale_))
                        iconName: modelData.icon
                        checked: root.chosen.indexOf(modelData.value) >= 0
                        onPicked: root.toggle(modelData.value)
                    }
                }
            }
            Row {
                visible: root.phase === ExportQueue.Idle
                width: parent.width
                spacing: Theme.l

                Column {
                    width: (parent.width - Theme.l) / 2
                    spacing: 6
                    Label { width: parent.width; text: qsTr("Size"); Accessible.ignored: true }
                    SegmentedControl {
                        width: parent.width
                        label: qsTr("Size")
                        focusPolicy: Qt.TabFocus
                        value: root.scale_
                        model: [
                            { value: 1, text: qsTr("HD"), tip: qsTr("The usual size") },
                            { value: 2, text: qsTr("4K"), tip: qsTr("Twice as many pixels each way; takes about four times as long") }
                        ]
                        onChosen: value => root.scale_ = value
                    }
                }
                Column {
                    width: (parent.width - Theme.l) / 2
                    spacing: 6
                    Label { width: parent.width; text: qsTr("Frames a second"); Accessible.ignored: true }
                    SegmentedControl {
                        width: parent.width
                        label: qsTr("Frames a second")
                        focusPolicy: Qt.TabFocus
                        value: root.rate
                        model: [
                            { value: 24, text: "24", tip: qsTr("As in the cinema") },
                            { value: 30, text: "30", tip: qsTr("Smaller files") },
                            { value: 60, text: "60", tip: qsTr("Smooth pointer and scrolling") }
                        ]
                        onChosen: value => root.rate = value
                    }
                }
            }
            Label {
                visible: root.phase === ExportQueue.Idle
                width: parent.width
                secondary: true
                wrapMode: Text.WordWrap
                text: root.chosen.length === 0 ? qsTr("Choose at least one format.")
                    : qsTr("%1 long · about %2, less where the picture stands still")
                        .arg(root.clock(root.editor.outputDuration))
                        .arg(root.sizeText(queue.expectedBytes(root.chosen, root.scale_, root.rate)))
            }

            // Working, and done.
            Column {
                visible: root.phase !== ExportQueue.Idle
                width: parent.width
                spacing: Theme.s

                Repeater {
                    model: queue.films
                    Rectangle {
                        id: film
                        required property var modelData
                        required property int index
                        readonly property bool working: modelData.state === "working"

                        width: parent.width
                        height: 56
                        radius: Theme.radiusS + 2
                        color: Theme.sunken
                        border.color: Theme.line

                        Icon {
                            id: sign
                            anchors.left: parent.left
                            anchors.leftMargin: Theme.m
                            anchors.verticalCenter: parent.verticalCenter
                            name: film.modelData.state === "done" ? "check" : film.modelData.state === "failed" ? "warning"
                                : root.formats.find(each => each.value === film.modelData.format)?.icon ?? "film"
                            color: film.modelData.state === "done" ? Theme.good
                                : film.modelData.state === "failed" ? Theme.warning : Theme.secondary
                            size: 22
                        }
                        Column {
                            anchors.left: sign.right
                            anchors.leftMargin: Theme.m
                            anchors.right: open.left
                            anchors.rightMargin: Theme.s
                            anchors.verticalCenter: parent.verticalCenter
                            spacing: film.working ? 7 : 1

                            Label {
                                width: parent.width
                                font: Theme.strong
                                text: film.modelData.file.length > 0 ? film.modelData.file : film.modelData.label
                            }
                            ProgressBar {
                                visible: film.working
                                width: parent.width
                                value: film.modelData.progress
                                Accessible.name: qsTr("Exporting %1").arg(film.modelData.label)
                            }
                            Label {
                                visible: !film.working
                                width: parent.width
                                font: Theme.tiny
                                secondary: true
                                text: film.modelData.state === "done" ? film.modelData.folder
                                    : film.modelData.state === "failed" || root.phase === ExportQueue.Failed
                                        ? qsTr("Not finished") : qsTr("Waiting")
                            }
                        }
                        IconButton {
                            id: open
                            anchors.right: parent.right
                            anchors.rightMargin: Theme.s
                            anchors.verticalCenter: parent.verticalCenter
                            visible: film.modelData.state === "done"
                            width: visible ? implicitWidth : 0
                            iconName: "play"
                            tip: qsTr("Play %1").arg(film.modelData.file)
                            focusPolicy: Qt.TabFocus
                            onClicked: Qt.openUrlExternally(queue.url(film.index))
                        }
                        Label {
                            visible: film.working
                            anchors.right: parent.right
                            anchors.rightMargin: Theme.m
                            anchors.top: parent.top
                            anchors.topMargin: 11
                            font: Theme.tiny
                            secondary: true
                            text: Math.round(film.modelData.progress * 100) + " %"
                        }
                    }
                }
            }
            Label {
                visible: root.phase === ExportQueue.Working
                width: parent.width
                secondary: true
                text: queue.cancelling ? qsTr("What is finished stays.") : root.leftText(queue.secondsLeft)
            }
            Column {
                visible: root.phase === ExportQueue.Failed
                width: parent.width
                spacing: Theme.xs
                Label {
                    width: parent.width
                    wrapMode: Text.WordWrap
                    text: queue.advice
                }
                Label {
                    width: parent.width
                    wrapMode: Text.Wrap
                    font: Theme.tiny
                    secondary: true
                    text: queue.failure
                }
            }

            // What to do next. Longer words go on a line of their own.
            Flow {
                anchors.right: parent.right
                width: Math.min(parent.width, needed)
                spacing: Theme.s

                readonly property real needed: {
                    let sum = -spacing;
                    for (let i = 0; i < children.length; ++i)
                        if (children[i].visible)
                            sum += children[i].width + spacing;
                    return Math.max(0, sum);
                }

                Button {
                    visible: root.phase === ExportQueue.Done
                    iconName: "copy"
                    text: qsTr("Copy")
                    tip: qsTr("Puts the film on the clipboard, to paste it elsewhere")
                    focusPolicy: Qt.TabFocus
                    onClicked: queue.copy()
                }
                Button {
                    visible: root.phase === ExportQueue.Done
                    iconName: "reveal"
                    text: qsTr("Show in folder")
                    tip: qsTr("Opens the file manager where the film is")
                    focusPolicy: Qt.TabFocus
                    onClicked: queue.reveal()
                }
                Button {
                    visible: root.phase === ExportQueue.Done || root.phase === ExportQueue.Failed
                    text: root.phase === ExportQueue.Done ? qsTr("Export more") : qsTr("Back")
                    kind: root.phase === ExportQueue.Done ? "plain" : "filled"
                    tip: qsTr("Back to the choice of formats")
                    focusPolicy: Qt.TabFocus
                    onClicked: queue.clear()
                }
                Button {
                    visible: root.phase === ExportQueue.Working
                    text: qsTr("Cancel")
                    tip: qsTr("Stops; films that are finished stay")
                    enabled: !queue.cancelling
                    focusPolicy: Qt.TabFocus
                    onClicked: queue.cancel()
                }
                Button {
                    id: go
                    objectName: "exportNow"
                    visible: root.phase === ExportQueue.Idle
                    kind: "filled"
                    iconName: "export"
                    enabled: root.chosen.length > 0
                    tip: qsTr("Makes the films that are ticked")
                    text: root.chosen.length > 1 ? qsTr("Export %1 films").arg(root.chosen.length) : qsTr("Export")
                    focusPolicy: Qt.TabFocus
                    onClicked: root.begin()
                    Keys.onReturnPressed: root.begin()
                }
            }
        }
    }

    function clock(seconds) {
        const whole = Math.round(seconds);
        return Math.floor(whole / 60) + ":" + String(whole % 60).padStart(2, "0");
    }
}
