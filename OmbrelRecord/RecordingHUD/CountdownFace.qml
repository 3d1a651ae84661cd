import QtQuick
import OmbrelRecord

/// The number before a recording, on a dark disc whatever the scheme: it lies on anybody's screen.
Item {
    id: root

    property int number: 3
    /// How to stop when no panel will be there to do it; empty: there will be one.
    property string keys

    implicitWidth: 240
    implicitHeight: 240
    Accessible.role: Accessible.StaticText
    Accessible.name: qsTr("Recording starts in %1").arg(number)

    onNumberChanged: if (number > 0 && !Theme.reducedMotion) turn.restart()

    Rectangle {
        anchors.centerIn: parent
        width: 208
        height: 208
        radius: 104
        color: "#EB0E0F13"
        border.width: 1
        border.color: "#33FFFFFF"
    }
    Rectangle {
        id: ring
        anchors.centerIn: parent
        width: 188
        height: 188
        radius: 94
        color: "transparent"
        border.width: 4
        border.color: Theme.record
        opacity: 0.9
    }
    Text {
        id: digit
        anchors.centerIn: parent
        anchors.verticalCenterOffset: root.keys.length > 0 ? -14 : 0
        text: root.number > 0 ? root.number : ""
        color: "#FFFFFF"
        font.family: Theme.family
        font.weight: Font.Bold
        font.pixelSize: 96
    }
    Text {
        visible: root.keys.length > 0
        anchors { horizontalCenter: parent.horizontalCenter; top: digit.bottom; topMargin: -16 }
        text: qsTr("%1 stops").arg(root.keys)
        color: "#C8CCD6"
        font: Theme.tiny
    }
    ParallelAnimation {
        id: turn
        NumberAnimation { target: digit; property: "scale"; from: 1.25; to: 1; duration: 200; easing.type: Easing.OutCubic }
        NumberAnimation { target: digit; property: "opacity"; from: 0.2; to: 1; duration: 200; easing.type: Easing.OutCubic }
        NumberAnimation { target: ring; property: "scale"; from: 1.06; to: 1; duration: 200; easing.type: Easing.OutCubic }
    }
}
