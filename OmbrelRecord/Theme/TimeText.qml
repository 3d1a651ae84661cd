pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// A time whose figures all have the same width, so that it does not tremble while it runs. It is written from left
/// to right in every language.
Item {
    id: root

    property string text
    property color color: Theme.text
    property font font: Theme.strong
    // The typeface's 0 is by far its widest figure; in cells as wide as that the others would stand apart.
    readonly property real cell: Math.ceil(figure.advanceWidth * 0.92)

    implicitWidth: letters.implicitWidth
    implicitHeight: letters.implicitHeight
    Accessible.role: Accessible.StaticText
    Accessible.name: text

    TextMetrics {
        id: figure
        font: root.font
        text: "0"
    }
    Row {
        id: letters
        LayoutMirroring.enabled: false

        Repeater {
            model: root.text.length
            Text {
                required property int index
                readonly property string letter: root.text.charAt(index)
                readonly property bool digit: letter >= "0" && letter <= "9"

                width: digit ? root.cell : implicitWidth
                horizontalAlignment: Text.AlignHCenter
                text: letter
                textFormat: Text.PlainText
                font: root.font
                color: root.color
                Accessible.ignored: true
            }
        }
    }
}
