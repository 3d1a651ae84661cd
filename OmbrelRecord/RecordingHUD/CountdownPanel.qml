import QtQuick
import QtQuick.Window
import OmbrelRecord

Window {
    id: panel

    required property var app
    property alias keys: face.keys

    width: 240
    height: 240
    color: "transparent"
    title: qsTr("Recording starts")
    flags: Qt.Tool | Qt.FramelessWindowHint | Qt.WindowStaysOnTopHint | Qt.WindowDoesNotAcceptFocus
        | Qt.WindowTransparentForInput | Qt.BypassWindowManagerHint | Qt.NoDropShadowWindowHint

    CountdownFace {
        id: face
        anchors.fill: parent
        number: panel.app.countdown
    }
}
