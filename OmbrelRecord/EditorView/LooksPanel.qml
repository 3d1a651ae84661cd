pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Window
import OmbrelRecord

/// Whole looks to choose from, the program's and the user's own, as pictures of the film itself.
InspectorPanel {
    id: root

    title: qsTr("Looks")

    /// The row of the look that the film has now; asked again whenever the project or the looks change.
    property int current: -1
    readonly property size canvas: ({ "4:5": Qt.size(4, 5), "9:16": Qt.size(9, 16), "1:1": Qt.size(1, 1) })[project.format]
        ?? Qt.size(16, 9)
    readonly property int columns: canvas.height > canvas.width ? 3 : 2
    readonly property real tileWidth: Math.floor((column.width - (columns - 1) * Theme.m) / columns)
    busy: !stills.settled
    readonly property Item column: first.parent
    readonly property int builtin: presets.builtinCount

    onProjectChanged: refresh()
    Component.onCompleted: refresh()

    function refresh() {
        current = presets.current(editor);
    }
    function keep() {
        const wanted = name.text.trim();
        if (presets.save(wanted.length > 0 ? wanted : presets.freshName(), editor) < 0) {
            trouble.text = qsTr("“%1” is a look that comes with the program. Choose another name.").arg(wanted);
            return;
        }
        trouble.text = "";
        name.clear();
        refresh();
    }

    LookPresets {
        id: presets
        onCountChanged: root.refresh()
    }
    LookPictures {
        id: stills
        editor: root.editor
        looks: presets
        room: Qt.size(Math.round(root.tileWidth * Screen.devicePixelRatio),
                      Math.round(root.tileWidth * root.canvas.height / root.canvas.width * Screen.devicePixelRatio))
    }

    component Tile: LookTile {
        id: tile

        required property int index
        required property bool builtin

        pictures: stills
        row: index
        own: !builtin
        width: root.tileWidth
        shape: root.canvas.height / root.canvas.width
        checked: root.current === index
        onPicked: presets.apply(index, root.editor)
        onRenamed: name => {
            trouble.text = presets.rename(index, name) ? ""
                : qsTr("There is a look called “%1” already. Choose another name.").arg(name.trim());
        }
        onReplaceWanted: {
            presets.save(tile.name, root.editor);
            root.refresh();
        }
        onDeleteWanted: presets.remove(index)
    }

    // What is on the film and in no look yet.
    Column {
        id: first
        width: parent.width
        spacing: Theme.s
        visible: root.current < 0

        Label {
            width: parent.width
            text: qsTr("Keep the film's look")
            font: Theme.strong
            Accessible.role: Accessible.Heading
        }
        Row {
            width: parent.width
            spacing: Theme.s

            TextField {
                id: name
                objectName: "lookName"
                width: parent.width - save.width - Theme.s
                label: qsTr("Name of the look")
                tip: qsTr("What the new look is called")
                placeholderText: presets.count > 0 ? presets.freshName() : ""
                maximumLength: 40
                onAccepted: root.keep()
            }
            Button {
                id: save
                objectName: "keepLook"
                text: qsTr("Keep")
                tip: qsTr("Keeps background, frame, pointer, camera and the captions' style for your next films")
                focusPolicy: Qt.TabFocus
                onClicked: root.keep()
            }
        }
    }
    Label {
        id: trouble
        width: parent.width
        visible: text.length > 0
        wrapMode: Text.WordWrap
        font: Theme.tiny
        color: Theme.warning
    }
    Label {
        width: parent.width
        visible: presets.failure.length > 0
        wrapMode: Text.WordWrap
        font: Theme.tiny
        color: Theme.warning
        text: qsTr("Your looks couldn't be kept: %1").arg(presets.failure)
    }
    Row {
        width: parent.width
        visible: presets.deletedName.length > 0
        spacing: Theme.s

        Label {
            anchors.verticalCenter: parent.verticalCenter
            width: parent.width - back.width - Theme.s
            secondary: true
            text: qsTr("“%1” is deleted").arg(presets.deletedName)
        }
        Button {
            id: back
            objectName: "putBack"
            implicitHeight: Theme.small
            leftPadding: 10
            rightPadding: 10
            text: qsTr("Put back")
            tip: qsTr("Brings the look back that was deleted last")
            focusPolicy: Qt.TabFocus
            onClicked: presets.putBack()
        }
    }
    PanelSection {
        first: true
        visible: presets.count > presets.builtinCount
        title: qsTr("Yours")

        Grid {
            columns: root.columns
            columnSpacing: Theme.m
            rowSpacing: Theme.s
            Repeater {
                model: presets
                Tile { visible: !builtin }
            }
        }
    }
    PanelSection {
        first: true
        title: presets.count > presets.builtinCount ? qsTr("Built in") : ""
        hint: qsTr("To make a look of your own, set up the film in the other panels and keep its look here.")

        Grid {
            columns: root.columns
            columnSpacing: Theme.m
            rowSpacing: Theme.s
            Repeater {
                model: presets
                Tile { visible: builtin }
            }
        }
    }
}
