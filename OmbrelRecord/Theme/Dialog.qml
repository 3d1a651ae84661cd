pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// A question over the window. `buttons`: [{text, kind}], the first being what Return does; `answered` tells
/// which was pressed, Escape and the scrim answer `escapeAnswer`.
T.Dialog {
    id: dialog

    property string text
    property var buttons: [{ text: qsTr("OK"), kind: "filled" }]
    property int escapeAnswer: buttons.length - 1
    property string iconName
    property color iconColor: Theme.warning
    /// What stands under the text.
    default property alias content: extra.data

    property bool decided: false
    signal answered(int button)

    function decide(button) {
        if (decided) return;
        decided = true;
        close();
        answered(button);
    }

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    modal: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape
    padding: Theme.xl
    width: 420
    implicitHeight: contentItem.implicitHeight + topPadding + bottomPadding
    onAboutToShow: decided = false
    onOpened: if (answers.count > 0) answers.itemAt(0).forceActiveFocus(Qt.TabFocusReason)
    onClosed: if (!decided) decide(escapeAnswer)

    T.Overlay.modal: Rectangle { color: Theme.scrim }
    enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.quick } }
    exit: Transition { NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.quick } }

    background: Rectangle {
        color: Theme.raised
        radius: Theme.radiusL
        border.color: Theme.line
        Shadow { radius: Theme.radiusL; reach: 30 }
    }
    contentItem: Column {
        spacing: Theme.s
        Accessible.role: Accessible.Dialog
        Accessible.name: dialog.title
        Accessible.description: dialog.text

        Icon {
            visible: dialog.iconName.length > 0
            name: dialog.iconName
            color: dialog.iconColor
            size: 28
        }
        Label {
            width: parent.width
            text: dialog.title
            font: Theme.title
            wrapMode: Text.WordWrap
        }
        Label {
            width: parent.width
            visible: text.length > 0
            text: dialog.text
            secondary: true
            lineHeight: 1.25
            wrapMode: Text.WordWrap
        }
        Column {
            id: extra
            width: parent.width
            spacing: Theme.m
        }
        Item { width: 1; height: Theme.m }
        Flow {
            width: parent.width
            spacing: Theme.s
            // What Return does stands last, where the eye ends.
            layoutDirection: dialog.mirrored ? Qt.LeftToRight : Qt.RightToLeft

            Repeater {
                id: answers
                model: dialog.buttons
                Button {
                    required property var modelData
                    required property int index
                    text: modelData.text
                    kind: modelData.kind ?? "plain"
                    onClicked: dialog.decide(index)
                    Keys.onReturnPressed: clicked()
                    Keys.onEnterPressed: clicked()
                }
            }
        }
    }
}
