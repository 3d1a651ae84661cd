// Not bound: a Loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// What is recorded and how, and what has been recorded. `app` is the application's model.
FocusScope {
    id: root

    required property var app
    property string wallpaper: "orbit"
    /// What ages are counted from.
    property date now: new Date()
    readonly property bool empty: app.recents.count === 0
    /// Everything is there that is to be seen.
    readonly property bool ready: backdrop.ready && recordings.status === Loader.Ready && !arrival.running

    signal fileWanted()

    focus: true

    Timer {
        interval: 30000
        repeat: true
        running: root.visible
        onTriggered: root.now = new Date()
    }
    Connections {
        target: root.app
        function onFileWanted() { root.fileWanted(); }
    }

    Rectangle {
        anchors.fill: parent
        color: Theme.background
    }

    // The bar at the top.
    Item {
        id: bar
        anchors { left: parent.left; right: parent.right; top: parent.top; leftMargin: Theme.xl; rightMargin: Theme.xl }
        height: 60

        Row {
            anchors { left: parent.left; verticalCenter: parent.verticalCenter }
            spacing: 10

            Rectangle {
                width: 26
                height: 26
                radius: 13
                color: "transparent"
                border.width: 3
                border.color: Theme.text
                anchors.verticalCenter: parent.verticalCenter

                Rectangle {
                    anchors.centerIn: parent
                    width: 10
                    height: 10
                    radius: 5
                    color: Theme.record
                }
            }
            Label {
                text: "Ombrel Record"
                font.family: Theme.family
                font.pixelSize: 17
                font.weight: Font.Bold
                anchors.verticalCenter: parent.verticalCenter
            }
        }
        Row {
            anchors { right: parent.right; verticalCenter: parent.verticalCenter }
            spacing: Theme.xs

            Button {
                visible: root.app.hasSample
                kind: "quiet"
                iconName: "film"
                text: qsTr("Open the sample")
                tip: qsTr("A finished recording to try everything with")
                onClicked: root.app.openSample()
            }
            Button {
                kind: "quiet"
                iconName: "open"
                text: qsTr("Open a movie…")
                tip: qsTr("Make a film of a movie file you have")
                keys: qsTr("Ctrl O")
                onClicked: root.app.openFile()
            }
        }
    }

    // What is not needed at once is read and made when it is.

    // What the user should know.
    Loader {
        id: messages
        anchors { left: bar.left; right: bar.right; top: bar.bottom }
        active: root.app.problem.length > 0 || root.app.recovered.length > 0
        source: "HomeMessages.qml"
        onLoaded: item.app = root.app
    }
    readonly property real messagesHeight: messages.active && messages.implicitHeight > 0
                                           ? messages.implicitHeight + Theme.l : 0

    // The source, as the film would show it.
    Item {
        id: stage
        anchors {
            left: bar.left
            right: column.left; rightMargin: Theme.xl
            top: bar.bottom; topMargin: root.messagesHeight
            bottom: library.top; bottomMargin: Theme.l
        }

        Backdrop {
            id: backdrop
            anchors.fill: parent
            radius: Theme.radiusL
            wallpaper: root.wallpaper
            windowRadius: 10
            window: preview.visible && !preview.empty
                ? Qt.rect(preview.x + preview.shownX, preview.y + preview.shownY, preview.shownWidth, preview.shownHeight)
                : Qt.rect(0, 0, 0, 0)
        }
        Picture {
            id: preview
            readonly property real shape: aspect > 0 ? aspect : 16 / 9
            readonly property real shownWidth: Math.min(width, height * shape)
            readonly property real shownHeight: Math.min(height, width / shape)
            readonly property real shownX: (width - shownWidth) / 2
            readonly property real shownY: (height - shownHeight) / 2

            anchors { fill: parent; margins: Math.round(Math.min(parent.width, parent.height) * 0.085) }
            app: root.app
            name: "preview"
            revision: root.app.livePreviewRevision
            radius: 10
            whole: true
            visible: root.app.hasScreenAccess
            onWidthChanged: wantSize()
            onHeightChanged: wantSize()
            function wantSize() {
                if (width > 0 && height > 0)
                    root.app.previewSize = Qt.size(Math.ceil(width * Screen.devicePixelRatio),
                                                   Math.ceil(height * Screen.devicePixelRatio));
            }
            Accessible.role: Accessible.Graphic
            Accessible.name: qsTr("Preview of %1").arg(root.app.targetName)
        }

        // While there is nothing to show.
        Loader {
            anchors.centerIn: parent
            width: Math.min(420, parent.width - 48)
            active: !root.app.hasScreenAccess
                    || (root.app.sourcesListed && preview.empty && root.app.displays.length === 0)
            source: "NothingToShow.qml"
            onLoaded: item.app = root.app
        }

        // The camera stands where the film will have it.
        Loader {
            width: Math.round(parent.height * 0.26)
            height: width
            LayoutMirroring.enabled: false
            anchors { right: parent.right; bottom: parent.bottom; margins: 20 }
            active: root.app.camera && root.app.hasScreenAccess
            source: "CameraBubble.qml"
            onLoaded: item.app = root.app
        }
    }

    // What is recorded.
    Panel {
        id: column
        anchors {
            right: bar.right
            top: stage.top
            bottom: stage.bottom
        }
        width: 372
        radius: Theme.radiusL

        Flickable {
            id: settings
            anchors {
                left: parent.left; right: parent.right; top: parent.top; bottom: start.top
                leftMargin: Theme.l; rightMargin: Theme.l; topMargin: Theme.l; bottomMargin: Theme.m
            }
            contentHeight: rows.implicitHeight
            interactive: contentHeight > height
            boundsBehavior: Flickable.StopAtBounds
            clip: interactive
            T.ScrollBar.vertical: ScrollBar { anchors.right: settings.right; anchors.rightMargin: -12 }

            Column {
                id: rows
                width: settings.width

                // The source.
                T.AbstractButton {
                    id: sourceButton
                    width: parent.width
                    implicitHeight: 56
                    enabled: root.app.hasScreenAccess
                    hoverEnabled: true
                    focusPolicy: Qt.StrongFocus
                    onClicked: picker.show()
                    Accessible.role: Accessible.Button
                    Accessible.name: qsTr("Source: %1. Choose another").arg(root.app.targetName)
                    Keys.onReturnPressed: clicked()

                    background: Rectangle {
                        radius: Theme.radiusM
                        color: Theme.sunken
                        border.color: sourceButton.hovered ? Theme.outline : Theme.line
                        FocusRing { shown: sourceButton.visualFocus; radius: Theme.radiusM + 3 }
                    }
                    contentItem: Item {
                        Icon {
                            id: sourceSign
                            anchors { left: parent.left; leftMargin: 14; verticalCenter: parent.verticalCenter }
                            name: root.app.windowID ? "window" : "display"
                            color: sourceButton.enabled ? Theme.text : Theme.disabled
                        }
                        Column {
                            anchors {
                                left: sourceSign.right; leftMargin: 12
                                right: sourceArrow.left; rightMargin: 8
                                verticalCenter: parent.verticalCenter
                            }
                            Label {
                                text: root.app.windowID ? qsTr("One window") : qsTr("Whole display")
                                font: Theme.tiny
                                secondary: true
                                width: parent.width
                                horizontalAlignment: Text.AlignLeft
                                Accessible.ignored: true
                            }
                            Label {
                                text: root.app.sourcesListed ? root.app.targetName : " "
                                font: Theme.strong
                                width: parent.width
                                horizontalAlignment: Text.AlignLeft
                                Accessible.ignored: true
                            }
                        }
                        Icon {
                            id: sourceArrow
                            anchors { right: parent.right; rightMargin: 14; verticalCenter: parent.verticalCenter }
                            name: "chevron-down"
                            size: 16
                            color: Theme.secondary
                        }
                    }
                    Tooltip { text: qsTr("Choose what to record"); shown: sourceButton.hovered }
                }
                Item { width: 1; height: Theme.s }

                InputRow {
                    width: parent.width
                    iconName: root.app.camera ? "camera" : "camera-off"
                    title: qsTr("Camera")
                    detail: !root.app.camera ? qsTr("Off")
                        : root.app.cameraMessage.length > 0 ? root.app.cameraMessage
                        : qsTr("In a bubble on the film")
                    checked: root.app.camera
                    tip: qsTr("Record the camera, too")
                    onToggled: root.app.toggleCamera()

                    Loader {
                        width: parent.width
                        active: root.app.camera
                        source: "CameraChoice.qml"
                        onLoaded: item.app = root.app
                    }
                }
                Hairline { width: parent.width }
                InputRow {
                    width: parent.width
                    iconName: root.app.microphone ? "microphone" : "microphone-off"
                    title: qsTr("Microphone")
                    detail: !root.app.microphone ? qsTr("Off")
                        : root.app.microphones.length === 0 ? qsTr("No microphone is connected")
                        : root.app.activeMicrophone
                    checked: root.app.microphone
                    tip: qsTr("Record your voice; captions are made from it")
                    onToggled: root.app.toggleMicrophone()

                    Loader {
                        width: parent.width
                        active: root.app.microphone
                        source: "MicrophoneChoice.qml"
                        onLoaded: item.app = root.app
                    }
                }
                Hairline { width: parent.width }
                InputRow {
                    width: parent.width
                    iconName: root.app.systemAudio ? "speaker" : "speaker-off"
                    title: qsTr("Computer's sound")
                    detail: root.app.systemAudio ? qsTr("What you hear is recorded") : qsTr("Off")
                    checked: root.app.systemAudio
                    tip: qsTr("Record what programs play")
                    onToggled: root.app.systemAudio = !root.app.systemAudio
                }

                // Where something is missing: what it means, and what to do.
                Loader {
                    width: parent.width
                    active: (root.app.hasScreenAccess && !root.app.seesKeys) || root.app.hotKeyProblem.length > 0
                    source: "HomeHints.qml"
                    onLoaded: item.app = root.app
                }
            }
        }

        Column {
            id: start
            anchors { left: parent.left; right: parent.right; bottom: parent.bottom; margins: Theme.l }
            spacing: 12

            RecordButton {
                id: recordButton
                width: parent.width
                text: root.app.starting ? qsTr("Starting…") : qsTr("Record")
                keys: root.app.hotKeyProblem.length === 0 ? root.app.hotKeyName : ""
                tip: qsTr("Counts down from three, then records")
                // Before the displays have been listed, too: a recording looks them up itself.
                enabled: !root.app.starting && (root.app.displays.length > 0 || !root.app.sourcesListed)
                focus: true
                onClicked: root.app.startRecording()
            }
            Row {
                anchors.horizontalCenter: parent.horizontalCenter
                visible: root.app.hotKeyProblem.length === 0 && root.app.hotKeyName.length > 0
                spacing: 8

                KeyCaps { keys: root.app.hotKeyName; anchors.verticalCenter: parent.verticalCenter }
                Label {
                    text: qsTr("starts and stops")
                    font: Theme.tiny
                    secondary: true
                    anchors.verticalCenter: parent.verticalCenter
                }
            }
        }
    }

    // What has been recorded.
    Item {
        id: library
        anchors { left: bar.left; right: bar.right; bottom: parent.bottom; bottomMargin: Theme.l }
        height: 34 + 188

        Label {
            id: heading
            anchors.left: parent.left
            visible: root.app.recents.listed
            opacity: recordings.opacity
            text: root.empty ? qsTr("How a film comes about") : qsTr("Recent recordings")
            font: Theme.lead
        }
        Label {
            anchors { left: heading.right; leftMargin: 8; baseline: heading.baseline }
            visible: !root.empty
            text: root.app.recents.count
            secondary: true
        }
        Loader {
            id: recordings
            anchors { left: parent.left; right: parent.right; top: heading.bottom; bottom: parent.bottom }
            asynchronous: true // the main thread waits for nobody to read it
            source: !root.app.recents.listed ? "" : root.empty ? "HowItWorks.qml" : "RecentRecordings.qml"
            onLoaded: {
                if (!root.empty) {
                    item.app = root.app;
                    item.now = Qt.binding(() => root.now);
                }
                arrival.restart();
            }
            NumberAnimation on opacity {
                id: arrival
                running: false
                from: 0
                to: 1
                duration: Theme.gentle
            }
        }
    }

    Keys.onPressed: event => {
        if (event.key === Qt.Key_O && (event.modifiers & Qt.ControlModifier)) {
            root.app.openFile();
            event.accepted = true;
        }
    }

    Loader {
        id: picker
        function show() {
            if (!item) setSource("SourcePicker.qml", { app: root.app });
            (item as SourcePicker).open();
        }
    }
    function showPicker() { picker.show(); }
}
