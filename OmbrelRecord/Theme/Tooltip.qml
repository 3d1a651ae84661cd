// Not bound: a Loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// What a control does, shown when the pointer rests on it. Lies inside the control; nothing is made until
/// it is wanted.
Loader {
    id: root

    property string text
    /// The keys that do the same, shown behind the text.
    property string keys
    property bool shown: false

    property bool used: false

    // A window hardly larger than its controls has no room for one beside them.
    function fits() { return Window.height > 160; }

    active: shown && text.length > 0 && fits()
    onShownChanged: if (!shown) used = false
    anchors.fill: parent

    sourceComponent: T.ToolTip {
        id: tip

        delay: 600
        visible: !root.used
        parent: root.parent
        x: Math.round((parent.width - width) / 2)
        y: -height - 8
        margins: 8
        padding: 8
        leftPadding: 10
        rightPadding: 10
        implicitWidth: content.implicitWidth + leftPadding + rightPadding
        implicitHeight: content.implicitHeight + topPadding + bottomPadding
        closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent | T.Popup.CloseOnReleaseOutsideParent

        // Whoever has pressed the control knows what it does, and wants to see what came of it.
        Connections {
            target: root.parent
            ignoreUnknownSignals: true
            // Only out of sight: the press is still on its way.
            function onPressedChanged() { root.used = true; }
        }

        contentItem: Row {
            id: content
            spacing: Theme.s

            Text {
                text: root.text
                textFormat: Text.PlainText
                font: Theme.tiny
                color: Theme.dark ? "#ECEEF3" : "#FFFFFF"
                width: Math.min(implicitWidth, 280)
                wrapMode: Text.WordWrap
            }
            Text {
                visible: root.keys.length > 0
                text: root.keys
                textFormat: Text.PlainText
                font: Theme.tiny
                color: "#A9B0BE"
            }
        }
        background: Rectangle {
            color: Theme.dark ? "#2C313C" : "#23262E"
            radius: Theme.radiusS
            border.color: Theme.dark ? "#3A404D" : "transparent"
        }
    }
}
