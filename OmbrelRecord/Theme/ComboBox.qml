pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// One of many choices. `model`: [{value, text}] with `textRole` and `valueRole` set accordingly. `chosen` is
/// sent for what the user picks.
T.ComboBox {
    id: control

    property string label
    property string tip
    property string iconName

    signal chosen(var value)

    textRole: "text"
    valueRole: "value"
    font: Theme.body
    leftPadding: mirrored ? 34 : 12
    rightPadding: mirrored ? 12 : 34
    implicitWidth: 200
    implicitHeight: Theme.control
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    onActivated: chosen(currentValue)
    Accessible.name: label.length > 0 ? label : tip
    Accessible.description: displayText

    contentItem: Item {
        Icon {
            id: sign
            visible: control.iconName.length > 0
            name: control.iconName
            color: Theme.secondary
            anchors.verticalCenter: parent.verticalCenter
            anchors.left: parent.left
        }
        Text {
            anchors.verticalCenter: parent.verticalCenter
            anchors.left: sign.visible ? sign.right : parent.left
            anchors.leftMargin: sign.visible ? 8 : 0
            anchors.right: parent.right
            text: control.displayText
            textFormat: Text.PlainText
            font: control.font
            color: control.enabled ? Theme.text : Theme.disabled
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignLeft
        }
    }
    indicator: Icon {
        x: control.mirrored ? 10 : control.width - width - 10
        y: Math.round((control.height - height) / 2)
        name: "chevron-down"
        size: 16
        color: control.enabled ? Theme.secondary : Theme.disabled
    }
    background: Rectangle {
        radius: Theme.radiusS
        color: Theme.raised
        border.width: 1
        border.color: control.hovered || control.popup.visible ? Theme.outline : Theme.line
        FocusRing { shown: control.visualFocus }
    }

    delegate: T.ItemDelegate {
        id: option

        required property int index
        required property var model
        required property var modelData

        width: ListView.view ? ListView.view.width : 0
        height: 34
        text: modelData && modelData[control.textRole] !== undefined ? modelData[control.textRole]
            : model[control.textRole] ?? modelData
        highlighted: control.highlightedIndex === index
        hoverEnabled: true
        leftPadding: 10
        Accessible.name: text

        contentItem: Item {
            Text {
                anchors { left: parent.left; right: mark.left; rightMargin: 8; verticalCenter: parent.verticalCenter }
                text: option.text
                textFormat: Text.PlainText
                font: control.font
                color: Theme.text
                elide: Text.ElideRight
                horizontalAlignment: Text.AlignLeft
            }
            Icon {
                id: mark
                anchors { right: parent.right; rightMargin: 10; verticalCenter: parent.verticalCenter }
                name: "check"
                size: 16
                color: Theme.accentText
                visible: control.currentIndex === option.index
            }
        }
        background: Rectangle {
            radius: Theme.radiusS - 2
            color: option.highlighted ? Theme.hovered : "transparent"
        }
    }

    popup: T.Popup {
        y: control.height + 4
        width: Math.max(control.width, 180)
        height: Math.min(contentItem.implicitHeight + 12, 340)
        padding: 6
        margins: 8

        contentItem: ListView {
            clip: true
            implicitHeight: contentHeight
            model: control.popup.visible ? control.delegateModel : null
            currentIndex: control.highlightedIndex
            T.ScrollBar.vertical: ScrollBar {}
        }
        background: Rectangle {
            color: Theme.raised
            radius: Theme.radiusM
            border.color: Theme.line
            Shadow {}
        }
        enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.quick } }
    }

    Tooltip { text: control.tip; shown: control.hovered && !control.popup.visible }
}
