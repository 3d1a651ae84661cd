import QtQuick
import OmbrelRecord

/// What the camera sees, in a circle.
Item {
    id: root

    property var app

    Rectangle {
        anchors.fill: parent
        radius: width / 2
        color: "#E614161C"
        Icon {
            anchors.centerIn: parent
            visible: bubble.empty
            name: root.app?.cameraMessage.length > 0 ? "camera-off" : "camera"
            color: "#C8CCD6"
            size: 28
        }
    }
    Picture {
        id: bubble
        anchors.fill: parent
        app: root.app
        name: "camera"
        revision: root.app?.cameraRevision ?? 0
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
