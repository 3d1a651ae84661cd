import QtQuick
import OmbrelRecord

/// Asks for a movie to open.
FilePicker {
    title: qsTr("Open a movie")
    filters: [qsTr("Movies (*.mp4 *.m4v *.mov *.mkv *.webm *.avi *.MP4 *.MOV)"), qsTr("All files (*)")]
}
