pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// One panel of the inspector: its heading, a reset of everything in it, and its sections, which scroll.
Item {
    id: root

    required property EditorModel editor
    readonly property var project: editor.project
    required property string title
    /// The fields of the project that the panel sets.
    property var fields: []
    readonly property bool changed: {
        const defaults = editor.defaults;
        return fields.some(name => String(project[name]) !== String(defaults[name]));
    }
    /// Whether something is being made that the panel shows.
    property bool busy: false
    default property alias content: column.data

    function reset() {
        const values = {};
        for (const name of fields)
            values[name] = editor.defaults[name];
        editor.setAll(values);
    }

    Item {
        id: heading
        x: Theme.l
        width: parent.width - 2 * Theme.l
        height: 52

        Label {
            anchors.verticalCenter: parent.verticalCenter
            anchors.left: parent.left
            text: root.title
            font: Theme.lead
            Accessible.role: Accessible.Heading
        }
        IconButton {
            anchors.verticalCenter: parent.verticalCenter
            anchors.right: parent.right
            anchors.rightMargin: -6
            visible: root.fields.length > 0
            enabled: root.changed
            iconName: "reset"
            iconSize: 18
            implicitWidth: 32
            implicitHeight: 32
            tip: qsTr("Set everything in this panel back")
            focusPolicy: Qt.TabFocus
            onClicked: root.reset()
        }
    }

    Flickable {
        id: flick
        y: heading.height
        width: parent.width
        height: parent.height - y
        contentHeight: column.height + 2 * Theme.l
        boundsBehavior: Flickable.StopAtBounds
        clip: true
        interactive: contentHeight > height
        T.ScrollBar.vertical: ScrollBar {}

        Column {
            id: column
            x: Theme.l
            y: 2
            width: flick.width - 2 * Theme.l
            spacing: Theme.l
        }
    }
}
