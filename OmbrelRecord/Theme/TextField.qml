import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// One line of text. `label` is its name for those who do not see it.
T.TextField {
    id: control

    property string label
    property string tip

    font: Theme.body
    color: enabled ? Theme.text : Theme.disabled
    placeholderTextColor: Theme.secondary
    selectionColor: Theme.accentFill
    selectedTextColor: Theme.onFill
    selectByMouse: true
    verticalAlignment: TextInput.AlignVCenter
    padding: 0
    leftPadding: 12
    rightPadding: 12
    implicitWidth: 200
    implicitHeight: Theme.control
    hoverEnabled: true
    Accessible.role: Accessible.EditableText
    Accessible.name: label.length > 0 ? label : placeholderText

    background: Rectangle {
        radius: Theme.radiusS
        color: Theme.sunken
        border.width: control.activeFocus ? 2 : 1
        border.color: control.activeFocus ? Theme.accent : control.hovered ? Theme.outline : Theme.line
    }

    Text {
        visible: control.length === 0 && control.preeditText.length === 0
        x: control.leftPadding
        width: control.width - control.leftPadding - control.rightPadding
        height: control.height
        text: control.placeholderText
        textFormat: Text.PlainText
        font: control.font
        color: control.placeholderTextColor
        elide: Text.ElideRight
        verticalAlignment: Text.AlignVCenter
    }
    Tooltip { text: control.tip; shown: control.hovered && !control.activeFocus }
}
