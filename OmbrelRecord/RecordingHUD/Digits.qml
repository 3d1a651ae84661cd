pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// A time whose digits all have the same width, so that it stands still while it runs.
Row {
    id: root

    property string text
    property font font: Theme.lead
    property color color: Theme.text

    Accessible.role: Accessible.StaticText
    Accessible.name: text

    TextMetrics { id: widest; font: root.font; text: "0" }

    Repeater {
        model: root.text.length

        Text {
            required property int index
            readonly property string sign: root.text.charAt(index)

            text: sign
            textFormat: Text.PlainText
            font: root.font
            color: root.color
            width: sign >= "0" && sign <= "9" ? Math.ceil(widest.advanceWidth) : implicitWidth
            horizontalAlignment: Text.AlignHCenter
        }
    }
}
