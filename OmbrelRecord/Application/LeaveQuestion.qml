import QtQuick
import OmbrelRecord

/// Whether to leave while a film is being exported.
Dialog {
    id: dialog

    signal agreed()

    title: qsTr("A film is being exported")
    text: qsTr("Closing now stops the export. Your edits are kept; you can export again later.")
    buttons: [{ text: qsTr("Stop and close"), kind: "danger" }, { text: qsTr("Keep exporting") }]
    onAnswered: button => {
        if (button === 0) dialog.agreed();
    }
}
