import QtQuick
import OmbrelRecord

/// A time whose figures all have the same width, so that it does not tremble while it runs.
Row {
    id: root

    property string text
    property color color: Theme.text
    property font font: Theme.strong

    Accessible.role: Accessible.StaticText
    Accessible.name: text

    TextMetrics {
        id: figure
        font: root.font
        text: "0"
    }
    Repeater {
        model: root.text.length
        Text {
            required property int index
            readonly property string letter: root.text.charAt(index)
            readonly property bool digit: letter >= "0" && letter <= "9"

            width: digit ? Math.ceil(figure.advanceWidth) : implicitWidth
            horizontalAlignment: Text.AlignHCenter
            text: letter
            textFormat: Text.PlainText
            font: root.font
            color: root.color
            Accessible.ignored: true
        }
    }
}
