import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// A picture of a background to choose.
T.AbstractButton {
    id: root

    required property string name
    property alias wallpaper: picture.wallpaper
    property alias backdrop: picture.backdrop
    property alias solid: picture.solid

    signal picked()

    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    onClicked: picked()
    Keys.onReturnPressed: picked()
    Accessible.role: Accessible.RadioButton
    Accessible.name: name
    Accessible.checkable: true
    Accessible.checked: checked

    contentItem: Item {
        Swatch {
            id: picture
            anchors.fill: parent
            radius: Theme.radiusS
            line: root.hovered ? Theme.outline : Theme.line
        }
        Rectangle {
            anchors.fill: parent
            anchors.margins: -2
            radius: Theme.radiusS + 2
            visible: root.checked
            color: "transparent"
            border.width: 2
            border.color: Theme.accent
        }
        Rectangle {
            visible: root.checked
            anchors.right: parent.right
            anchors.bottom: parent.bottom
            anchors.margins: 5
            width: 16
            height: 16
            radius: 8
            color: Theme.accentFill
            Icon {
                anchors.centerIn: parent
                name: "check"
                size: 12
                color: Theme.onFill
            }
        }
    }
    background: FocusRing { shown: root.visualFocus }

    Tooltip { text: root.name; shown: root.hovered }
}
