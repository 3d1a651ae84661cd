import QtQuick
import QtQuick.Layouts
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
    readonly property bool ready: backdrop.ready

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
                keys: "Ctrl+O"
                onClicked: root.app.openFile()
            }
        }
    }

    // What the user should know.
    Column {
        id: messages
        anchors { left: bar.left; right: bar.right; top: bar.bottom }
        spacing: Theme.s

        MessageBar {
            id: problemBar
            visible: root.app.problem.length > 0
            width: parent.width
            text: root.app.problem
            onClosed: root.app.dismissProblem()
        }
        Repeater {
            model: root.app.recovered

            MessageBar {
                id: offer
                required property var modelData

                width: messages.width
                iconName: "restore"
                tint: Theme.accentText
                ground: Theme.accent
                text: qsTr("“%1” was cut off before it was finished. It has been made whole and can be opened.")
                    .arg(modelData.name)
                onClosed: root.app.dismissRecovered()

                Button {
                    text: qsTr("Open")
                    implicitHeight: 32
                    onClicked: {
                        const folder = offer.modelData.folder;
                        root.app.dismissRecovered();
                        root.app.open(folder);
                    }
                }
            }
        }
    }
    readonly property real messagesHeight: messages.implicitHeight > 0 ? messages.implicitHeight + Theme.l : 0

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
            Accessible.role: Accessible.Graphic
            Accessible.name: qsTr("Preview of %1").arg(root.app.targetName)
        }

        // While there is nothing to show.
        Column {
            anchors.centerIn: parent
            width: Math.min(420, parent.width - 48)
            spacing: Theme.m
            visible: !root.app.hasScreenAccess || (preview.empty && root.app.displays.length === 0)

            Rectangle {
                width: 56
                height: 56
                radius: 18
                color: "#26FFFFFF"
                anchors.horizontalCenter: parent.horizontalCenter
                Icon { anchors.centerIn: parent; name: root.app.hasScreenAccess ? "display" : "lock"; color: "#FFFFFF"; size: 28 }
            }
            Label {
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.WordWrap
                color: "#FFFFFF"
                font: Theme.title
                text: root.app.hasScreenAccess ? qsTr("No display to show") : qsTr("Allow screen recording")
            }
            Label {
                width: parent.width
                horizontalAlignment: Text.AlignHCenter
                wrapMode: Text.WordWrap
                color: "#D8DBE4"
                lineHeight: 1.25
                text: root.app.hasScreenAccess
                    ? qsTr("Log in to a desktop session, then start Ombrel Record there. Films you have made can be opened here all the same.")
                    : qsTr("Ombrel Record shows and records only what you choose, and nothing leaves this computer. Your desktop asks once.")
            }
            Button {
                visible: !root.app.hasScreenAccess
                anchors.horizontalCenter: parent.horizontalCenter
                kind: "filled"
                text: qsTr("Allow screen recording")
                onClicked: root.app.requestScreenAccess()
            }
        }

        // The camera stands where the film will have it.
        Item {
            LayoutMirroring.enabled: false
            visible: root.app.camera && root.app.hasScreenAccess
            width: Math.round(parent.height * 0.26)
            height: width
            anchors { right: parent.right; bottom: parent.bottom; margins: 20 }

            Rectangle {
                anchors.fill: parent
                radius: width / 2
                color: "#E614161C"
                Icon {
                    anchors.centerIn: parent
                    visible: bubble.empty
                    name: root.app.cameraMessage.length > 0 ? "camera-off" : "camera"
                    color: "#C8CCD6"
                    size: 28
                }
            }
            Picture {
                id: bubble
                anchors.fill: parent
                app: root.app
                name: "camera"
                revision: root.app.cameraRevision
                radius: width / 2
                mirrored: true
                Accessible.role: Accessible.Graphic
                Accessible.name: qsTr("Camera")
            }
            Rectangle {
                anchors.fill: parent
                radius: width / 2
                color: "transparent"
                border.width: 3
                border.color: "#F2FFFFFF"
            }
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
                                text: root.app.targetName
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

                    ComboBox {
                        visible: root.app.cameras.length > 1
                        width: parent.width
                        label: qsTr("Camera")
                        textRole: "name"
                        valueRole: "id"
                        model: root.app.cameras
                        currentIndex: Math.max(0, root.app.cameras.findIndex(c => c.id === root.app.cameraID))
                        onChosen: id => root.app.chooseCamera(id)
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

                    ComboBox {
                        visible: root.app.microphones.length > 1
                        width: parent.width
                        label: qsTr("Microphone")
                        textRole: "name"
                        valueRole: "id"
                        model: [{ id: "", name: qsTr("The system's choice") }].concat(root.app.microphones)
                        currentIndex: root.app.microphoneID.length === 0 ? 0
                            : 1 + root.app.microphones.findIndex(m => m.id === root.app.microphoneID)
                        onChosen: id => root.app.chooseMicrophone(id)
                    }
                    LevelMeter {
                        visible: root.app.microphones.length > 0
                        width: parent.width
                        level: root.app.microphoneLevel
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
                Column {
                    width: parent.width
                    topPadding: Theme.xs
                    spacing: Theme.s

                    Hint {
                        width: parent.width
                        visible: root.app.hasScreenAccess && !root.app.seesKeys
                        iconName: "keyboard"
                        text: qsTr("Typing can't be noticed here, so the view follows clicks alone.")
                        action: qsTr("Allow")
                        onActed: root.app.requestKeys()
                    }
                    Hint {
                        width: parent.width
                        visible: root.app.hotKeyProblem.length > 0 && root.app.problem !== root.app.hotKeyProblem
                        iconName: "info"
                        text: root.app.hotKeyProblem
                    }
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
                enabled: !root.app.starting && root.app.displays.length > 0
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
            text: root.empty ? qsTr("How a film comes about") : qsTr("Recent recordings")
            font: Theme.lead
        }
        Label {
            anchors { left: heading.right; leftMargin: 8; baseline: heading.baseline }
            visible: !root.empty
            text: root.app.recents.count
            secondary: true
        }
        HowItWorks {
            anchors { left: parent.left; right: parent.right; top: heading.bottom; bottom: parent.bottom; topMargin: Theme.m }
            visible: root.empty
        }
        ListView {
            id: list
            anchors {
                left: parent.left; right: parent.right; top: heading.bottom; bottom: parent.bottom
                leftMargin: -4; rightMargin: -4; topMargin: Theme.s
            }
            visible: !root.empty
            orientation: ListView.Horizontal
            spacing: Theme.l
            model: root.app.recents
            clip: true
            // Room for the focus ring, which the list's edge would cut.
            leftMargin: 4
            rightMargin: 4
            boundsBehavior: Flickable.StopAtBounds
            reuseItems: true
            keyNavigationEnabled: true
            highlightMoveDuration: Theme.gentle
            activeFocusOnTab: true
            Accessible.role: Accessible.List
            Accessible.name: qsTr("Recent recordings")
            T.ScrollBar.horizontal: ScrollBar {}

            delegate: RecordingCard {
                required property var model
                required property int index
                app: root.app
                folder: model.folder
                still: model.still
                duration: model.duration
                date: model.date
                now: root.now
                focusPolicy: Qt.ClickFocus
                current: ListView.isCurrentItem && ListView.view.activeFocus
                onClicked: root.app.open(folder)
                onRevealWanted: root.app.reveal(folder)
                onTrashWanted: root.app.trash(folder)

                FocusRing {
                    anchors.topMargin: 4 - 3
                    anchors.bottomMargin: parent.height - 4 - Math.round(parent.width * 0.625) - 3
                    shown: parent.current
                    radius: Theme.radiusM + 3
                }
            }
            Keys.onReturnPressed: if (currentItem) currentItem.clicked()
            Keys.onEnterPressed: if (currentItem) currentItem.clicked()
            Keys.onDeletePressed: if (currentItem) currentItem.trashWanted()

            WheelHandler {
                // A wheel that only turns up and down moves the row, too.
                orientation: Qt.Vertical
                acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
                onWheel: event => {
                    const low = list.originX - list.leftMargin;
                    const high = Math.max(low, list.originX + list.contentWidth - list.width + list.rightMargin);
                    list.contentX = Math.max(low, Math.min(high, list.contentX - event.angleDelta.y));
                }
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
            active = true;
            item.open();
        }
        active: false
        sourceComponent: SourcePicker { app: root.app }
    }
    function showPicker() { picker.show(); }
}
