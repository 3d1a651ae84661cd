pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// A question the application has: {title, text, buttons}. Return takes the first answer, Escape the last.
Rectangle {
    id: root

    property var question: ({ title: "", text: "", buttons: [] })

    signal answered(int button)

    implicitWidth: 420
    implicitHeight: content.implicitHeight + 48
    color: Theme.raised
    Accessible.role: Accessible.AlertMessage
    Accessible.name: question.title ?? ""
    Accessible.description: question.text ?? ""
    Keys.onEscapePressed: answered((question.buttons ?? []).length - 1)

    Column {
        id: content
        anchors { left: parent.left; right: parent.right; top: parent.top; margins: Theme.xl }
        spacing: Theme.s

        Label { width: parent.width; text: root.question.title ?? ""; font: Theme.title; wrapMode: Text.WordWrap }
        Label {
            width: parent.width
            text: root.question.text ?? ""
            secondary: true
            wrapMode: Text.WordWrap
            lineHeight: 1.25
        }
        Item { width: 1; height: Theme.m }
        Row {
            anchors.right: parent.right
            spacing: Theme.s
            layoutDirection: Application.layoutDirection === Qt.RightToLeft ? Qt.LeftToRight : Qt.RightToLeft

            Repeater {
                model: root.question.buttons ?? []

                Button {
                    required property string modelData
                    required property int index

                    text: modelData
                    kind: index === 0 ? "record" : "plain"
                    focus: index === 0
                    onClicked: root.answered(index)
                    Keys.onReturnPressed: clicked()
                    Keys.onEnterPressed: clicked()
                }
            }
        }
    }
}
