// Not bound: a Loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified
import QtQuick
import OmbrelRecord

/// The one window of the application: home, waiting, or the editor.
Window {
    id: main

    required property var app
    objectName: "main"

    readonly property bool homeShown: visible && app.screen === 0

    signal quitWanted()

    width: 1320
    height: 788
    minimumWidth: 1080
    minimumHeight: 700
    color: Theme.background
    // What the toolkit itself draws (its dialog for files) goes with the rest.
    palette {
        window: Theme.surface
        windowText: Theme.text
        base: Theme.sunken
        text: Theme.text
        light: Theme.surface
        midlight: Theme.sunken
        mid: Theme.outline
        dark: Theme.outline
        button: Theme.sunken
        buttonText: Theme.text
        brightText: Theme.text
        highlight: Theme.accent
        highlightedText: Theme.text
        placeholderText: Theme.secondary
    }
    title: app.screen === 2 && app.editor ? qsTr("%1 — Ombrel Record").arg(app.editor.name) : "Ombrel Record"

    LayoutMirroring.enabled: Application.layoutDirection === Qt.RightToLeft
    LayoutMirroring.childrenInherit: true

    onHomeShownChanged: homeShown ? app.startLivePreview() : app.stopLivePreview()
    onClosing: close => {
        // While it is recorded or saved the window only goes out of sight.
        if (app.isRecording) {
            close.accepted = false;
            main.hide();
            return;
        }
        if (app.screen === 2 && app.editor && app.editor.exportState === 1 && !leave.agreed) {
            close.accepted = false;
            leave.ask();
            return;
        }
        main.quitWanted();
    }

    Loader {
        id: content
        anchors.fill: parent
        focus: true
        // Under an editor that is still being made it is only to be looked at.
        enabled: screen !== 2
        readonly property int screen: main.app.screen
        onScreenChanged: show()
        Component.onCompleted: show()
        onLoaded: {
            if (screen === 1) {
                item.message = Qt.binding(() => main.app.workingMessage);
                item.cancellable = Qt.binding(() => main.app.cancellable);
            }
            item.forceActiveFocus();
        }

        function show() {
            if (screen === 2 && main.app.editor)
                return editor.setSource("EditorView.qml", { editor: main.app.editor });
            editor.setSource("");
            if (screen === 1)
                setSource("WorkingView.qml", { message: main.app.workingMessage });
            else
                setSource("HomeView.qml", { app: main.app });
        }
    }
    // Made piece by piece between frames, so that nothing halts; what was there shows until it is complete.
    Loader {
        id: editor
        anchors.fill: parent
        asynchronous: true
        onLoaded: {
            content.sourceComponent = undefined;
            (item as Item).forceActiveFocus();
        }
    }
    Connections {
        target: editor.item ?? content.item
        ignoreUnknownSignals: true
        function onBackRequested() { main.app.backHome(); }
        function onFileWanted() { files.ask(); }
        function onCancelled() { main.app.cancelWorking(); }
    }
    Shortcut {
        sequences: [StandardKey.Quit] // qmllint disable unqualified
        onActivated: main.close()
    }

    // Both are read and made when they are first needed.
    Loader {
        id: files
        function ask() {
            active = true;
            (item as MovieChooser).ask();
        }
        active: false
        source: "MovieChooser.qml"
    }
    Connections {
        target: files.item
        function onChosen(file) {
            main.app.openVideo(decodeURIComponent(file.toString().replace(/^file:\/\//, "")));
        }
    }
    Loader {
        id: leave
        property bool agreed: false
        function ask() {
            active = true;
            (item as LeaveQuestion).open();
        }
        active: false
        source: "LeaveQuestion.qml"
    }
    Connections {
        target: leave.item
        function onAgreed() {
            leave.agreed = true;
            main.close();
        }
    }
}
