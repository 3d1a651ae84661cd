import QtQuick
import OmbrelRecord

/// One of a few values of a field of the project, with its name above.
Column {
    id: root

    required property EditorModel editor
    required property string field
    required property string label
    property alias model: choice.model

    width: parent ? parent.width : implicitWidth
    spacing: 6

    Label {
        width: parent.width
        text: root.label
        Accessible.ignored: true
    }
    SegmentedControl {
        id: choice
        width: parent.width
        label: root.label
        focusPolicy: Qt.TabFocus
        value: root.editor.project[root.field]
        onChosen: value => root.editor.set(root.field, value)
    }
}
