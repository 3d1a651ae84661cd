import QtQuick
import QtQuick.Window
import OmbrelRecord

Window {
    id: panel

    required property var app

    width: 420
    height: face.implicitHeight
    minimumWidth: width
    maximumWidth: width
    color: Theme.raised
    title: face.question.title ?? ""
    flags: Qt.Dialog | Qt.WindowStaysOnTopHint | Qt.CustomizeWindowHint | Qt.WindowTitleHint
    modality: Qt.ApplicationModal
    onClosing: close => {
        close.accepted = false;
        face.answered(1);
    }

    QuestionFace {
        id: face
        anchors.fill: parent
        focus: true
        question: panel.app.question
        onAnswered: button => panel.app.answer(button)
    }
}
