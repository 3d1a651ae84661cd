import QtCore
import QtQuick.Dialogs

/// The dialog for files where the desktop brings none.
FileDialog {
    required property FilePicker picker
    /// What the toolkit itself says in it, so that it is translated with the rest.
    readonly property list<string> said: [QT_TRANSLATE_NOOP("FileDialog", "File name"), QT_TRANSLATE_NOOP("FileDialog", "Filter")]

    currentFolder: StandardPaths.writableLocation(picker.folder)
    title: picker.title
    acceptLabel: picker.save ? qsTr("Save") : qsTr("Open")
    rejectLabel: qsTr("Cancel")
    nameFilters: picker.filters
    fileMode: picker.save ? FileDialog.SaveFile : FileDialog.OpenFile
}
