import QtQuick
import OmbrelRecord

/// A text. `secondary` ones are quieter.
Text {
    property bool secondary: false

    color: !enabled ? Theme.disabled : secondary ? Theme.secondary : Theme.text
    font: Theme.body
    textFormat: Text.PlainText
    elide: Text.ElideRight
    // At the beginning of the line, whatever the text is written in: mirrored where lines run the other way.
    horizontalAlignment: Text.AlignLeft
    Accessible.role: Accessible.StaticText
    Accessible.name: text
    Accessible.ignored: text.length === 0
}
