import QtQuick
import OmbrelRecord

/// A number of the project. A drag is one step of undo.
Slider {
    id: root

    required property EditorModel editor
    required property string field

    width: parent ? parent.width : implicitWidth
    resetValue: editor.defaults[field] ?? NaN
    focusPolicy: Qt.TabFocus
    Accessible.description: valueText + (tip.length > 0 ? ". " + tip : "")
    onPressedChanged: {
        if (pressed) editor.beginGesture();
        else editor.endGesture();
    }
    onEdited: value => editor.set(field, value)

    Binding {
        target: root
        property: "value"
        value: root.editor.project[root.field]
        when: !root.pressed
        restoreMode: Binding.RestoreNone
    }
}
