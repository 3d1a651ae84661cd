pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// What the user should know, over the width of the window.
Column {
    id: root

    property var app

    spacing: Theme.s

    MessageBar {
        visible: root.app?.problem.length > 0
        width: parent.width
        text: root.app?.problem ?? ""
        onClosed: root.app.dismissProblem()
    }
    Repeater {
        model: root.app?.recovered ?? []

        MessageBar {
            id: offer
            required property var modelData

            width: root.width
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
