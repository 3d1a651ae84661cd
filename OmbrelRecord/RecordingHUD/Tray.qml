import Qt.labs.platform as Platform
import QtQuick

/// Takes the panel's place where the panel would be in the film.
Platform.SystemTrayIcon {
    id: tray

    required property var app

    visible: app.isRecording
    tooltip: qsTr("Recording, %1").arg(app.elapsedText)
    icon.source: "image://icons/stop/FF4D4F"
    onActivated: reason => {
        if (reason === Platform.SystemTrayIcon.Trigger) app.stopRecording();
    }
    menu: Platform.Menu {
        Platform.MenuItem { text: qsTr("Stop and make the film"); onTriggered: tray.app.stopRecording() }
        Platform.MenuItem { text: qsTr("Discard this recording…"); onTriggered: tray.app.discardRecording() }
    }
}
