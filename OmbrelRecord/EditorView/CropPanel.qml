pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// Which part of the screen is the film.
InspectorPanel {
    id: root

    property bool cropping: false
    signal cropWanted(bool crop)

    readonly property var crop: project.crop
    readonly property size source: editor.sourceSize

    title: qsTr("Crop")
    fields: ["crop"]

    Button {
        width: parent.width
        objectName: "crop"
        iconName: "crop"
        checked: root.cropping
        text: root.cropping ? qsTr("Done") : root.crop ? qsTr("Change the crop") : qsTr("Crop on the picture")
        tip: qsTr("Shows the whole screen; drag the frame and its corners")
        focusPolicy: Qt.TabFocus
        onClicked: root.cropWanted(!root.cropping)
    }
    PanelSection {
        first: true
        title: qsTr("Shape")
        Flow {
            width: parent.width
            spacing: 6
            Repeater {
                model: [
                    { text: qsTr("Whole"), ratio: 0 }, { text: "16:9", ratio: 16 / 9 }, { text: "4:3", ratio: 4 / 3 },
                    { text: "1:1", ratio: 1 }, { text: "4:5", ratio: 4 / 5 }, { text: "9:16", ratio: 9 / 16 }
                ]
                Chip {
                    required property var modelData
                    checked: root.isShape(modelData.ratio)
                    text: modelData.text
                    tip: modelData.ratio ? qsTr("The largest part of that shape around the middle of the crop")
                                         : qsTr("The whole screen")
                    focusPolicy: Qt.TabFocus
                    onClicked: root.shape(modelData.ratio)
                }
            }
        }
    }
    PanelSection {
        hint: root.crop
            ? qsTr("%1 × %2 of %3 × %4 pixels").arg(Math.round(root.crop.width * root.source.width))
                .arg(Math.round(root.crop.height * root.source.height))
                .arg(root.source.width).arg(root.source.height)
            : qsTr("The whole screen, %1 × %2 pixels").arg(root.source.width).arg(root.source.height)
    }

    function isShape(ratio) {
        if (!ratio || !crop)
            return !ratio && !crop;
        return Math.abs(crop.width * source.width / (crop.height * source.height) / ratio - 1) < 0.005;
    }
    function shape(ratio) {
        if (!ratio) {
            editor.set("crop", undefined);
            return;
        }
        const aspect = source.width / source.height;
        const width = Math.min(1, ratio / aspect);
        const height = Math.min(1, aspect / ratio);
        const around = crop ?? Qt.rect(0, 0, 1, 1);
        const x = Math.max(0, Math.min(1 - width, around.x + around.width / 2 - width / 2));
        const y = Math.max(0, Math.min(1 - height, around.y + around.height / 2 - height / 2));
        editor.set("crop", width > 0.999 && height > 0.999 ? undefined : Qt.rect(x, y, width, height));
    }
}
