pragma ComponentBehavior: Bound
import QtCore
import QtQuick
import OmbrelRecord

/// What lies behind the recording.
InspectorPanel {
    id: root

    title: qsTr("Background")
    fields: ["wallpaperPreset", "wallpaper", "solidColor", "backdrop", "backgroundBlur"]

    readonly property string kind: project.wallpaper ? "image" : project.solidColor ? "color"
        : project.wallpaperPreset ? "wallpaper" : "gradient"

    function use(values) {
        const all = { wallpaper: undefined, solidColor: undefined, wallpaperPreset: "" };
        for (const name in values)
            all[name] = values[name];
        editor.setAll(all);
    }

    SegmentedControl {
        width: parent.width
        label: qsTr("Kind of background")
        focusPolicy: Qt.TabFocus
        value: root.kind
        model: [
            { value: "wallpaper", icon: "sparkle", tip: qsTr("Wallpaper") },
            { value: "gradient", icon: "backdrop", tip: qsTr("Gradient") },
            { value: "color", icon: "droplet", tip: qsTr("One colour") },
            { value: "image", icon: "open", tip: qsTr("Image of your own") }
        ]
        onChosen: value => {
            if (value === "wallpaper")
                root.use({ wallpaperPreset: root.editor.defaults.wallpaperPreset });
            else if (value === "gradient")
                root.use({});
            else if (value === "color")
                root.use({ solidColor: "#1e2129" });
            else
                picker.ask();
        }
    }

    Grid {
        visible: root.kind === "wallpaper"
        width: parent.width
        columns: 3
        spacing: Theme.s

        Repeater {
            model: root.kind === "wallpaper" ? swatches.wallpapers : []
            SwatchButton {
                required property var modelData
                width: (parent.width - 2 * Theme.s) / 3
                height: width * 0.64
                name: modelData.title
                wallpaper: modelData.name
                checked: root.project.wallpaperPreset === modelData.name
                onPicked: root.use({ wallpaperPreset: modelData.name })
            }
        }
    }
    Grid {
        visible: root.kind === "gradient"
        width: parent.width
        columns: 3
        spacing: Theme.s

        Repeater {
            model: root.kind === "gradient" ? swatches.backdrops : []
            SwatchButton {
                required property var modelData
                width: (parent.width - 2 * Theme.s) / 3
                height: width * 0.64
                name: modelData.title
                backdrop: modelData.name
                checked: root.project.backdrop === modelData.name
                onPicked: root.use({ backdrop: modelData.name })
            }
        }
    }
    Column {
        visible: root.kind === "color"
        width: parent.width
        spacing: Theme.m

        Grid {
            width: parent.width
            columns: 6
            spacing: Theme.s

            Repeater {
                model: ["#0e0f13", "#1e2129", "#3a4152", "#8a93a6", "#dfe2e8", "#ffffff",
                        "#5563f0", "#8b5cf6", "#d946ef", "#f43f5e", "#f97316", "#f5a524",
                        "#84a729", "#22a06b", "#0ea5a4", "#0ea5e9", "#2563eb", "#4b2c20"]
                SwatchButton {
                    required property string modelData
                    width: (parent.width - 5 * Theme.s) / 6
                    height: width
                    name: modelData
                    solid: modelData
                    checked: root.project.solidColor === modelData
                    onPicked: root.use({ solidColor: modelData })
                }
            }
        }
        TextField {
            id: code
            width: parent.width
            label: qsTr("Colour as #rrggbb")
            placeholderText: "#rrggbb"
            tip: qsTr("A colour in hexadecimal figures")
            maximumLength: 7
            onEditingFinished: {
                const text = code.text.charAt(0) === "#" ? code.text : "#" + code.text;
                if (/^#([0-9a-f]{3}|[0-9a-f]{6})$/i.test(text) && text !== root.project.solidColor)
                    root.use({ solidColor: text.toLowerCase() });
            }
            Binding {
                target: code
                property: "text"
                value: root.project.solidColor ?? ""
            }
        }
    }
    Column {
        visible: root.kind === "image"
        width: parent.width
        spacing: Theme.m

        Swatch {
            width: parent.width
            height: width * 0.56
            radius: Theme.radiusS
            line: Theme.line
            file: root.project.wallpaper ?? ""
        }
        Button {
            width: parent.width
            iconName: "open"
            text: qsTr("Choose another image…")
            tip: qsTr("Takes a picture file from this computer")
            focusPolicy: Qt.TabFocus
            onClicked: picker.ask()
        }
    }

    PanelSlider {
        editor: root.editor
        field: "backgroundBlur"
        label: qsTr("Blur")
        tip: qsTr("Softens the background so that the recording stands out")
        from: 0
        to: 1
    }

    Swatch { id: swatches; visible: false; width: 0; height: 0 }

    FilePicker {
        id: picker
        title: qsTr("Choose a background image")
        filters: [qsTr("Images") + " (*.png *.jpg *.jpeg *.webp *.avif *.tif *.tiff *.bmp)"]
        folder: StandardPaths.PicturesLocation
        onChosen: file => root.use({ wallpaper: swatches.pathOf(file) })
    }
}
