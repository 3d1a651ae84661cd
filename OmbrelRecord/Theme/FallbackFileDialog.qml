import QtCore
import QtQuick.Dialogs

/// The dialog for files where the desktop brings none.
FileDialog {
    required property FilePicker picker

    currentFolder: StandardPaths.writableLocation(picker.folder)
    title: picker.title
    nameFilters: picker.filters
    fileMode: picker.save ? FileDialog.SaveFile : FileDialog.OpenFile
}
