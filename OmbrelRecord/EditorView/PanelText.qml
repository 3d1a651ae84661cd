import QtQuick
import OmbrelRecord

/// A text of the project.
TextField {
    id: root

    required property EditorModel editor
    required property string field

    width: parent ? parent.width : implicitWidth
    onTextEdited: editor.set(field, text)

    Binding {
        target: root
        property: "text"
        value: root.editor.project[root.field] ?? ""
    }
}
