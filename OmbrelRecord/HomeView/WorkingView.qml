pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// Something is under way that the user waits for. A percentage at the end of the message becomes a bar.
FocusScope {
    id: root

    property string message
    /// It can be given up: with the button, or Escape.
    property bool cancellable: false

    signal cancelled()

    Keys.onEscapePressed: if (cancellable) cancelled()

    readonly property var found: message.match(/(\d+)\s*%/)
    readonly property real share: found ? parseInt(found[1]) / 100 : -1

    Accessible.role: Accessible.StatusBar
    Accessible.name: message

    Rectangle {
        anchors.fill: parent
        color: Theme.background
    }
    Column {
        anchors.centerIn: parent
        width: 400
        spacing: Theme.l

        // A film strip that is being looked through.
        Item {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 120
            height: 72

            Row {
                id: strip
                spacing: 6
                anchors.centerIn: parent

                Repeater {
                    model: 5
                    Rectangle {
                        required property int index
                        // The wave runs through the frames; where less motion is wished it stands.
                        readonly property real near: Math.max(0, 1 - Math.abs(index - wave.at) / 1.6)
                        width: 18
                        height: 44 + 18 * near
                        radius: 5
                        anchors.verticalCenter: parent.verticalCenter
                        color: Theme.accent
                        opacity: 0.22 + 0.78 * near
                    }
                }
            }
            QtObject {
                id: wave
                property real at: 2
            }
            NumberAnimation {
                target: wave
                property: "at"
                from: -1.5
                to: 5.5
                duration: 1600
                loops: Animation.Infinite
                running: root.visible && !Theme.reducedMotion
            }
        }
        Label {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            text: root.message
            font: Theme.title
            wrapMode: Text.WordWrap
        }
        Label {
            width: parent.width
            horizontalAlignment: Text.AlignHCenter
            secondary: true
            wrapMode: Text.WordWrap
            text: root.share >= 0 ? qsTr("Finding the waits to skip and the moments to move in on.")
                : qsTr("This takes a moment.")
        }
        ProgressBar {
            width: parent.width
            label: root.message
            value: Math.max(0, root.share)
            indeterminate: root.share < 0
        }
        Button {
            anchors.horizontalCenter: parent.horizontalCenter
            visible: root.cancellable
            focus: true
            text: qsTr("Cancel")
            tip: qsTr("Back to your recordings; nothing is lost")
            onClicked: root.cancelled()
            Keys.onReturnPressed: clicked()
        }
    }
}
