import QtCore
import QtQuick
import OmbrelRecord

/// Asks for a file: with the desktop's own dialog, else with one of the program's.
Item {
    id: root

    required property string title
    /// As "Movies (*.mp4 *.mov)".
    property var filters: []
    property bool save: false
    /// Where to look first.
    property int folder: StandardPaths.MoviesLocation
    /// What a file that is saved is called at first.
    property string name

    signal chosen(url file)

    function ask() { portal.ask(title, filters, save, name); }

    /// A file to save that was given no ending gets the one it should have.
    function completed(file) {
        const bare = save && !/\.[^/.]+$/.test(file.toString());
        return bare ? file + name.replace(/^.*\./, ".") : file;
    }

    visible: false

    PortalFileDialog {
        id: portal
        onChosen: file => root.chosen(root.completed(file))
        onUnavailable: {
            if (own.item)
                own.item.open(); // qmllint disable type
            else
                own.setSource("FallbackFileDialog.qml", { picker: root });
        }
    }
    Loader {
        id: own
        onLoaded: item.open() // qmllint disable type
    }
    Connections {
        target: own.item
        // qmllint disable type
        function onAccepted() { root.chosen(root.completed(own.item.selectedFile)); }
        // qmllint enable type
    }
}
