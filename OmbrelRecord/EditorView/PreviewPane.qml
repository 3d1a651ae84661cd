// Not bound: a Loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified
import QtQuick
import OmbrelRecord

/// The film, on a neutral ground; or, while a crop or a zoom is aimed, the screen it was made of.
Item {
    id: root

    required property EditorModel editor
    /// "", "crop" or "zoom".
    property string aim
    readonly property bool aiming: aim.length > 0
    readonly property var project: editor.project
    readonly property var selected: editor.selectedBlock
    readonly property var block: selected.kind === "zoom" ? selected : null
    readonly property var crop: project.crop
    readonly property size base: editor.viewBase
    readonly property bool ready: aiming ? (frame.item?.ready ?? false) : film.ready

    signal aimDone()

    PreviewItem {
        id: film
        anchors.fill: parent
        anchors.margins: Theme.l
        visible: !root.aiming
        editor: root.editor
        Accessible.role: Accessible.Graphic
        Accessible.name: qsTr("Preview of the film")
    }

    Loader {
        id: frame
        anchors.fill: parent
        anchors.margins: Theme.l
        active: root.aiming
        sourceComponent: root.aim === "zoom" ? zoomFrame : cropFrame
        onLoaded: (item as Item).forceActiveFocus()
    }

    Component {
        id: cropFrame
        FrameEditor {
            editor: root.editor
            name: qsTr("Crop")
            hint: qsTr("Drag the frame to choose what is in the film")
            time: root.editor.sourceTime
            frame: root.crop ?? Qt.rect(0, 0, 1, 1)
            onBegun: root.editor.beginGesture()
            onFinished: root.editor.endGesture()
            onEdited: frame => root.editor.set("crop",
                frame.width > 0.995 && frame.height > 0.995 ? undefined : frame)
            onCloseWanted: root.aimDone()
        }
    }
    Component {
        id: zoomFrame
        FrameEditor {
            editor: root.editor
            name: qsTr("Zoom")
            hint: root.block ? qsTr("Drag the frame to aim, its corners to zoom · %1×").arg(root.block.zoom.toFixed(2))
                             : qsTr("Select a zoom first")
            region: root.crop ?? Qt.rect(0, 0, 1, 1)
            keepsShape: true
            smallest: Math.min(root.base.width, root.base.height) / 4
            time: root.block ? Math.max(root.block.start, Math.min(root.block.end - 0.01, root.editor.sourceTime)) : 0
            frame: {
                if (!root.block)
                    return Qt.rect(0, 0, 1, 1);
                const zoom = Math.max(1, root.block.zoom);
                const w = root.base.width / zoom, h = root.base.height / zoom;
                return Qt.rect(Math.max(0, Math.min(1 - w, root.block.x - w / 2)),
                               Math.max(0, Math.min(1 - h, root.block.y - h / 2)), w, h);
            }
            onBegun: root.editor.beginGesture()
            onFinished: root.editor.endGesture()
            onEdited: frame => {
                if (!root.block)
                    return;
                root.editor.editZoomBlock(root.block.id, {
                    x: frame.x + frame.width / 2,
                    y: frame.y + frame.height / 2,
                    zoom: Math.max(1, Math.min(4, root.base.width / frame.width))
                });
            }
            onCloseWanted: root.aimDone()
        }
    }
}
