import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// A button with a text, an icon or both. Kinds: "plain"; "filled", of which a view has one; "record"; "quiet",
/// without a ground until the pointer is over it; "danger".
T.Button {
    id: control

    property string kind: "plain"
    property string iconName
    property string tip
    property string keys

    readonly property bool colored: (kind === "filled" || kind === "record") && enabled
    readonly property color ink: !enabled ? Theme.disabled
        : colored ? Theme.onFill
        : kind === "danger" ? (Theme.dark ? "#FF7A7C" : "#C42B2D")
        : checked ? Theme.accentText : Theme.text

    font: Theme.strong
    padding: 0
    leftPadding: text.length > 0 ? (iconName.length > 0 ? 12 : 16) : 8
    rightPadding: text.length > 0 ? 16 : 8
    spacing: Theme.s
    implicitWidth: Math.max(implicitHeight, implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: Theme.control
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus

    Accessible.name: text.length > 0 ? text : tip
    Accessible.description: tip

    contentItem: Item {
        // Of what the text would like to have, not of what it gets: that depends on the width made of this.
        implicitWidth: (sign.visible ? sign.width : 0) + words.implicitWidth
                       + (sign.visible && words.visible ? row.spacing : 0)
        implicitHeight: 20

        Row {
            id: row
            anchors.centerIn: parent
            spacing: control.spacing

            Icon {
                id: sign
                visible: control.iconName.length > 0
                name: control.iconName
                color: control.ink
                size: 20
                anchors.verticalCenter: parent.verticalCenter
            }
            Text {
                id: words
                visible: control.text.length > 0
                text: control.text
                textFormat: Text.PlainText
                font: control.font
                color: control.ink
                elide: Text.ElideRight
                width: Math.min(implicitWidth, control.availableWidth - (sign.visible ? 20 + control.spacing : 0))
                anchors.verticalCenter: parent.verticalCenter
            }
        }
    }

    background: Rectangle {
        radius: Theme.radiusS
        color: control.kind === "filled" && control.enabled ? Theme.accentFill
            : control.kind === "record" && control.enabled ? Theme.recordFill
            : control.kind === "quiet" ? "transparent"
            : Theme.raised
        border.width: control.colored || control.kind === "quiet" ? 0 : 1
        border.color: Theme.line

        Rectangle {
            anchors.fill: parent
            radius: parent.radius
            color: control.down ? (control.colored ? "#28000000" : Theme.pressed)
                : control.checked ? Theme.chosen
                : control.hovered ? (control.colored ? "#1CFFFFFF" : Theme.hovered) : "transparent"
            Behavior on color { ColorAnimation { duration: Theme.quick } }
        }
        FocusRing { shown: control.visualFocus }
    }

    // By the keyboard the text is enough; a tip would cover what stands beside it.
    Tooltip { text: control.tip; keys: control.keys; shown: control.hovered }
}
