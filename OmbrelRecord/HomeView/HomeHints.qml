import QtQuick
import OmbrelRecord

/// Where something is missing: what it means, and what to do.
Column {
    id: root

    property var app

    topPadding: Theme.xs
    spacing: Theme.s

    Hint {
        width: parent.width
        visible: root.app !== undefined && root.app.hasScreenAccess && !root.app.seesKeys
        iconName: "keyboard"
        text: qsTr("Typing can't be noticed here, so the view follows clicks alone.")
        action: qsTr("Allow")
        onActed: root.app.requestKeys()
    }
    Hint {
        width: parent.width
        visible: root.app !== undefined && root.app.hotKeyProblem.length > 0
                 && root.app.problem !== root.app.hotKeyProblem
        iconName: "info"
        text: root.app?.hotKeyProblem ?? ""
    }
}
