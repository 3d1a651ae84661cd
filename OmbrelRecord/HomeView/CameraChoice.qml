import QtQuick
import OmbrelRecord

/// Which camera, where there are several.
Column {
    id: root

    property var app

    ComboBox {
        visible: root.app?.cameras.length > 1
        width: parent.width
        label: qsTr("Camera")
        textRole: "name"
        valueRole: "id"
        model: root.app?.cameras ?? []
        currentIndex: Math.max(0, root.app?.cameras.findIndex(c => c.id === root.app.cameraID) ?? 0)
        onChosen: id => root.app.chooseCamera(id)
    }
}
