pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// What the panel shows while a recording runs, dark whatever the scheme. `app` is the application's model.
Rectangle {
    id: root

    required property var app

    implicitWidth: 320
    implicitHeight: 82
    radius: 20
    color: "#16181E"
    border.width: 1
    border.color: "#3A404D"

    Item {
        id: lamp
        width: 12
        height: 12
        anchors { left: parent.left; leftMargin: 22; verticalCenter: time.verticalCenter }

        Rectangle {
            anchors.centerIn: parent
            width: 22
            height: 22
            radius: 11
            color: Theme.record
            opacity: 0.25
            visible: !Theme.reducedMotion
            SequentialAnimation on scale {
                running: root.visible && !Theme.reducedMotion
                loops: Animation.Infinite
                NumberAnimation { from: 0.6; to: 1; duration: 800; easing.type: Easing.OutCubic }
                NumberAnimation { from: 1; to: 0.6; duration: 800; easing.type: Easing.InCubic }
            }
        }
        Rectangle {
            anchors.fill: parent
            radius: 6
            color: Theme.record
        }
    }
    TimeText {
        id: time
        anchors { left: lamp.right; leftMargin: 14; top: parent.top; topMargin: 16 }
        text: root.app.elapsedText
        color: "#ECEEF3"
        font: Theme.title
        Accessible.name: qsTr("Recorded so far: %1").arg(text)
    }
    // What the button under the pointer does.
    Text {
        anchors { left: lamp.left; right: buttons.left; top: time.bottom; topMargin: 6 }
        height: 16
        verticalAlignment: Text.AlignVCenter
        visible: level.hinted
        text: discard.hovered ? discard.tip : stop.keys
        textFormat: Text.PlainText
        font: Theme.tiny
        color: "#ECEEF3"
        elide: Text.ElideRight
        Accessible.ignored: true
    }
    // The microphone's level, or what is recorded without one.
    Item {
        id: level
        readonly property bool hinted: discard.hovered || (stop.hovered && stop.keys.length > 0)
        visible: !hinted
        anchors { left: lamp.left; top: time.bottom; topMargin: 6 }
        width: 132
        height: 16

        Icon {
            id: microphone
            anchors.verticalCenter: parent.verticalCenter
            x: -2
            name: root.app.microphone ? "microphone" : "microphone-off"
            size: 16
            color: "#9AA1AF"
        }
        Row {
            visible: root.app.microphone
            anchors { left: microphone.right; leftMargin: 8; verticalCenter: parent.verticalCenter }
            spacing: 2
            Accessible.role: Accessible.Indicator
            Accessible.name: qsTr("Microphone level")

            Repeater {
                model: 16
                Rectangle {
                    required property int index
                    width: 4
                    height: 8
                    radius: 1
                    color: (index + 0.5) / 16 >= root.app.microphoneLevel ? "#2A2E38" : index > 13 ? Theme.record : "#4CC38A"
                }
            }
        }
        Text {
            visible: !root.app.microphone
            anchors { left: microphone.right; leftMargin: 8; verticalCenter: parent.verticalCenter }
            text: qsTr("No microphone")
            textFormat: Text.PlainText
            font: Theme.tiny
            color: "#9AA1AF"
        }
    }
    Row {
        id: buttons
        anchors { right: parent.right; rightMargin: 14; verticalCenter: parent.verticalCenter }
        spacing: 4

        IconButton {
            id: discard
            implicitWidth: 44
            implicitHeight: 50
            iconName: "discard"
            ink: hovered ? "#FFFFFF" : "#9AA1AF"
            tip: qsTr("Discard this recording")
            anchors.verticalCenter: parent.verticalCenter
            onClicked: root.app.discardRecording()
        }
        Button {
            id: stop
            // In other languages the word is longer; the meter ends before it.
            width: Math.max(98, implicitWidth)
            implicitHeight: 50
            kind: "record"
            iconName: "stop"
            text: qsTr("Stop")
            tip: qsTr("Stop and make the film")
            keys: root.app.hotKeyProblem.length === 0 ? root.app.hotKeyName : ""
            anchors.verticalCenter: parent.verticalCenter
            onClicked: root.app.stopRecording()
        }
    }
}
