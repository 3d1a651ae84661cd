import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// How far something has come; `indeterminate` where that is not known.
T.ProgressBar {
    id: control

    property string label

    implicitWidth: 240
    implicitHeight: 6
    Accessible.role: Accessible.ProgressBar
    Accessible.name: label.length > 0 ? label : qsTr("Progress")

    background: Rectangle {
        radius: 3
        color: Theme.dark ? "#2A2E38" : "#DFE2E8"
    }
    contentItem: Item {
        clip: true

        Rectangle {
            id: fill
            readonly property real share: control.indeterminate ? 0.3 : control.position

            width: Math.max(share > 0 ? 6 : 0, share * parent.width)
            height: parent.height
            radius: 3
            color: Theme.accent
            x: control.mirrored && !control.indeterminate ? parent.width - width : 0
            Behavior on width {
                enabled: !control.indeterminate
                NumberAnimation { duration: Theme.quick; easing.type: Easing.OutCubic }
            }
            SequentialAnimation on x {
                running: control.indeterminate && control.visible && !Theme.reducedMotion
                loops: Animation.Infinite
                NumberAnimation {
                    from: -control.width * 0.3; to: control.width; duration: 1200
                    easing.type: Easing.InOutQuad
                }
            }
        }
    }
}
