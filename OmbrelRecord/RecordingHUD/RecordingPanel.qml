import QtQuick
import QtQuick.Window
import OmbrelRecord

Window {
    id: panel

    required property var app

    width: 320
    height: 82
    color: "transparent"
    title: qsTr("Recording")
    flags: Qt.Tool | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint | Qt.WindowDoesNotAcceptFocus
        | Qt.NoDropShadowWindowHint

    RecordingFace {
        anchors.fill: parent
        app: panel.app
    }
}
