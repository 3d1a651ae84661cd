import QtQuick
import OmbrelRecord

/// A text. `secondary` ones are quieter.
Text {
    property bool secondary: false

    color: !enabled ? Theme.disabled : secondary ? Theme.secondary : Theme.text
    font: Theme.body
    textFormat: Text.PlainText
    elide: Text.ElideRight
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.ignored: text.length === 0
}
