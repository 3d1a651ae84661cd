import QtQuick
import OmbrelRecord

/// Which microphone, where there are several, and how loud it hears.
Column {
    id: root

    property var app

    spacing: Theme.s

    ComboBox {
        visible: root.app?.microphones.length > 1
        width: parent.width
        label: qsTr("Microphone")
        textRole: "name"
        valueRole: "id"
        model: [{ id: "", name: qsTr("The system's choice") }].concat(root.app?.microphones ?? [])
        currentIndex: !root.app || root.app.microphoneID.length === 0 ? 0
            : 1 + root.app.microphones.findIndex(m => m.id === root.app.microphoneID)
        onChosen: id => root.app.chooseMicrophone(id)
    }
    LevelMeter {
        visible: root.app?.microphones.length > 0
        width: parent.width
        level: root.app?.microphoneLevel ?? 0
    }
}
