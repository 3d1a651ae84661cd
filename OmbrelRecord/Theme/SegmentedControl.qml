pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// One of a few choices, all of them in sight. `model`: [{value, text, icon, tip}], text or icon may be
/// missing. The arrow keys go from one to the next. `chosen` is sent for what the user picks.
T.Control {
    id: control

    property var model: []
    property var value
    property string label

    signal chosen(var value)

    function pick(step) {
        const at = model.findIndex(option => option.value === value);
        const next = Math.max(0, Math.min(model.length - 1, at + step));
        if (next !== at) chosen(model[next].value);
    }

    padding: 3
    implicitWidth: Math.max(implicitContentWidth + leftPadding + rightPadding, 60)
    implicitHeight: 34
    focusPolicy: Qt.StrongFocus
    Accessible.role: Accessible.Grouping
    Accessible.name: label

    Keys.onLeftPressed: pick(mirrored ? 1 : -1)
    Keys.onRightPressed: pick(mirrored ? -1 : 1)

    background: Rectangle {
        radius: Theme.radiusS + 2
        color: Theme.sunken
        border.color: Theme.line
        FocusRing { shown: control.visualFocus; radius: Theme.radiusS + 5 }
    }

    contentItem: Row {
        Repeater {
            id: segments
            model: control.model

            T.AbstractButton {
                id: segment

                required property var modelData
                readonly property bool current: modelData.value === control.value
                readonly property string tip: modelData.tip ?? ""

                // The segments share the width evenly.
                width: control.availableWidth / Math.max(1, segments.count)
                height: control.availableHeight
                implicitWidth: inside.implicitWidth + 24
                text: modelData.text ?? ""
                hoverEnabled: true
                focusPolicy: Qt.NoFocus
                checkable: false
                onClicked: if (!current) control.chosen(modelData.value)
                Accessible.role: Accessible.RadioButton
                Accessible.name: text.length > 0 ? text : tip
                Accessible.checkable: true
                Accessible.checked: current

                background: Rectangle {
                    radius: Theme.radiusS - 1
                    color: segment.current ? (Theme.dark ? "#323846" : "#FFFFFF")
                        : segment.down ? Theme.pressed : segment.hovered ? Theme.hovered : "transparent"
                    border.width: segment.current ? 1 : 0
                    border.color: Theme.dark ? "#434A5A" : Theme.line
                }
                contentItem: Item {
                    implicitWidth: inside.implicitWidth

                    Row {
                        id: inside
                        anchors.centerIn: parent
                        spacing: 6

                        Icon {
                            visible: name.length > 0
                            name: segment.modelData.icon ?? ""
                            size: 20
                            color: segment.current ? Theme.text : Theme.secondary
                            anchors.verticalCenter: parent.verticalCenter
                        }
                        Text {
                            visible: segment.text.length > 0
                            text: segment.text
                            textFormat: Text.PlainText
                            elide: Text.ElideRight
                            width: Math.min(implicitWidth, segment.width - 6 - (segment.modelData.icon ? 26 : 0))
                            font: Theme.strong
                            color: segment.current || segment.hovered ? Theme.text : Theme.secondary
                            anchors.verticalCenter: parent.verticalCenter
                        }
                    }
                }
                Tooltip { text: segment.tip; shown: segment.hovered }
            }
        }
    }
}
