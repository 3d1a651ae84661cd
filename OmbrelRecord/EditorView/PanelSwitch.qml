import QtQuick
import OmbrelRecord

/// A switch of the project.
Switch {
    id: root

    required property EditorModel editor
    required property string field

    width: parent ? parent.width : implicitWidth
    focusPolicy: Qt.TabFocus
    onToggled: editor.set(field, checked)

    Binding {
        target: root
        property: "checked"
        value: root.editor.project[root.field] === true
    }
}
