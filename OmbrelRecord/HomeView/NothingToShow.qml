import QtQuick
import OmbrelRecord

/// In the preview's place while there is nothing to show: why, and what to do.
Column {
    id: root

    property var app
    readonly property bool allowed: app === undefined || app.hasScreenAccess

    spacing: Theme.m

    Rectangle {
        width: 56
        height: 56
        radius: 18
        color: "#26FFFFFF"
        anchors.horizontalCenter: parent.horizontalCenter
        Icon { anchors.centerIn: parent; name: root.allowed ? "display" : "lock"; color: "#FFFFFF"; size: 28 }
    }
    Label {
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.WordWrap
        color: "#FFFFFF"
        font: Theme.title
        text: root.allowed ? qsTr("No display to show") : qsTr("Allow screen recording")
    }
    Label {
        width: parent.width
        horizontalAlignment: Text.AlignHCenter
        wrapMode: Text.WordWrap
        color: "#D8DBE4"
        lineHeight: 1.25
        text: root.allowed
            ? qsTr("Log in to a desktop session, then start Ombrel Record there. Films you have made can be opened here all the same.")
            : qsTr("Ombrel Record shows and records only what you choose, and nothing leaves this computer. Your desktop asks once.")
    }
    Button {
        visible: !root.allowed
        anchors.horizontalCenter: parent.horizontalCenter
        kind: "filled"
        text: qsTr("Allow screen recording")
        onClicked: root.app.requestScreenAccess()
    }
}
