pragma ComponentBehavior: Bound
import QtQuick
import OmbrelRecord

/// What is said, as text on the film.
InspectorPanel {
    id: root

    title: qsTr("Captions")
    fields: ["captionStyle", "captionSize", "captionBottom"]

    readonly property int count: editor.captionCount
    readonly property bool any: count > 0
    property string saved
    /// Made anew only when the number of words changes, so that an edit of one leaves the list where it is.
    property var lines: []
    onCountChanged: lines = editor.captionRows()

    Column {
        width: parent.width
        spacing: Theme.m
        visible: !root.editor.captioning && (root.editor.hasSound || !root.any)

        Label {
            width: parent.width
            visible: !root.any && root.editor.captionsMessage.length === 0
            secondary: true
            wrapMode: Text.WordWrap
            lineHeight: 1.25
            text: root.editor.hasSound
                ? qsTr("Turns what you say into words on the film. Everything happens on this computer.")
                : qsTr("This recording has no sound. Turn on Mic before recording to get captions.")
        }
        ComboBox {
            id: language
            width: parent.width
            visible: root.editor.hasSound
            label: qsTr("Language")
            tip: qsTr("The language that is spoken")
            iconName: "language"
            focusPolicy: Qt.TabFocus
            model: [
                { value: "en-US", text: qsTr("English") }, { value: "de-DE", text: qsTr("German") },
                { value: "fr-FR", text: qsTr("French") }, { value: "es-ES", text: qsTr("Spanish") },
                { value: "it-IT", text: qsTr("Italian") }, { value: "pt-BR", text: qsTr("Portuguese") },
                { value: "nl-NL", text: qsTr("Dutch") }, { value: "pl-PL", text: qsTr("Polish") },
                { value: "sv-SE", text: qsTr("Swedish") }, { value: "uk-UA", text: qsTr("Ukrainian") },
                { value: "ja-JP", text: qsTr("Japanese") }, { value: "zh-CN", text: qsTr("Chinese") }
            ]
            Component.onCompleted: currentIndex = Math.max(0, indexOfValue(root.editor.captionsLanguage()))
        }
        Button {
            width: parent.width
            objectName: "generate"
            visible: root.editor.hasSound
            iconName: "captions"
            text: root.any ? qsTr("Listen again") : qsTr("Make captions")
            tip: root.any ? qsTr("Replaces the captions there are") : qsTr("Listens to the recording and writes what is said")
            focusPolicy: Qt.TabFocus
            onClicked: root.editor.generateCaptions(language.currentValue)
        }
        Button {
            width: parent.width
            objectName: "retime"
            visible: root.editor.hasSound && root.any
            iconName: "waveform"
            text: qsTr("Time the words anew")
            tip: qsTr("Keeps your words and finds in the sound when each is said; for words you corrected")
            focusPolicy: Qt.TabFocus
            onClicked: root.editor.retimeCaptions(language.currentValue)
        }
    }
    Column {
        width: parent.width
        spacing: Theme.m
        visible: root.editor.captioning

        Label {
            width: parent.width
            text: qsTr("Listening… %1 %").arg(Math.round(root.editor.captioningProgress * 100))
        }
        ProgressBar {
            width: parent.width
            value: root.editor.captioningProgress
            Accessible.name: qsTr("Listening")
        }
        Button {
            width: parent.width
            text: qsTr("Cancel")
            tip: qsTr("The captions stay as they are")
            focusPolicy: Qt.TabFocus
            onClicked: root.editor.cancelCaptions()
        }
    }
    Label {
        width: parent.width
        visible: root.editor.captionsMessage.length > 0
        wrapMode: Text.WordWrap
        color: Theme.warning
        text: root.editor.captionsMessage
    }

    PanelSection {
        visible: root.any
        first: !root.editor.hasSound
        PanelSwitch {
            editor: root.editor
            field: "showCaptions"
            text: qsTr("Show captions")
            tip: qsTr("Draws the words onto the film")
        }
        PanelChoice {
            editor: root.editor
            field: "captionStyle"
            label: qsTr("Style")
            model: [
                { value: "highlight", text: qsTr("Lit"), tip: qsTr("The word being said lights up") },
                { value: "clean", text: qsTr("Clean"), tip: qsTr("Plain text") },
                { value: "boxed", text: qsTr("Boxed"), tip: qsTr("On a dark ground") },
                { value: "bold", text: qsTr("Bold"), tip: qsTr("Large and heavy") }
            ]
        }
        PanelSlider {
            editor: root.editor
            field: "captionSize"
            label: qsTr("Size")
            tip: qsTr("How large the words are")
            from: 0.025
            to: 0.09
            format: value => Math.round(value / 0.045 * 100) + " %"
        }
        PanelSlider {
            editor: root.editor
            field: "captionBottom"
            label: qsTr("Height")
            tip: qsTr("How far the words stand from the lower edge")
            from: 0.02
            to: 0.5
        }
    }
    PanelSection {
        visible: root.any
        title: qsTr("Words")

        ListView {
            id: list
            width: parent.width
            height: Math.min(contentHeight, 280)
            clip: true
            spacing: Theme.s
            boundsBehavior: Flickable.StopAtBounds
            model: root.lines
            reuseItems: true

            delegate: Column {
                id: line

                required property var modelData

                width: ListView.view ? ListView.view.width : 0
                spacing: 2

                Label {
                    text: Math.floor(line.modelData.start / 60) + ":"
                        + String(Math.floor(line.modelData.start) % 60).padStart(2, "0")
                    font: Theme.tiny
                    secondary: true
                }
                Flow {
                    width: parent.width
                    spacing: 4

                    Repeater {
                        model: line.modelData.count
                        TextInput {
                            id: word

                            required property int index
                            readonly property int at: line.modelData.first + index
                            readonly property var entry: root.editor.captionCount > at ? root.editor.captionWord(at) : null
                            readonly property string given: entry?.text ?? ""

                            leftPadding: 6
                            rightPadding: 6
                            topPadding: 4
                            bottomPadding: 4
                            font: Theme.body
                            color: Theme.text
                            selectionColor: Theme.accentFill
                            selectedTextColor: Theme.onFill
                            selectByMouse: true
                            activeFocusOnTab: true
                            Accessible.role: Accessible.EditableText
                            Accessible.name: qsTr("Word %1").arg(given)
                            Accessible.description: tip.text
                            onActiveFocusChanged: {
                                if (!activeFocus) return;
                                selectAll();
                                // A frame on, where the film shows the word as said.
                                root.editor.seek(root.editor.outputTime(entry.start) + 1 / 60);
                            }
                            onEditingFinished: if (text !== given) root.editor.editCaption(at, text)
                            Keys.onEscapePressed: text = given

                            Binding {
                                target: word
                                property: "text"
                                value: word.given
                            }
                            Rectangle {
                                z: -1
                                anchors.fill: parent
                                radius: 6
                                color: word.activeFocus ? Theme.sunken : hover.hovered ? Theme.hovered : "transparent"
                                border.color: word.activeFocus ? Theme.accent : Theme.line
                            }
                            HoverHandler { id: hover }
                            Tooltip {
                                id: tip
                                text: qsTr("Type to correct it, empty it to take it out")
                                shown: hover.hovered && !word.activeFocus
                            }
                        }
                    }
                }
            }
        }
    }
    PanelSection {
        visible: root.any
        hint: root.saved

        Row {
            width: parent.width
            spacing: Theme.s
            Button {
                width: (parent.width - Theme.s) / 2
                iconName: "save"
                text: qsTr("SRT")
                tip: qsTr("Saves the captions as a SubRip file")
                focusPolicy: Qt.TabFocus
                onClicked: root.save("srt")
            }
            Button {
                width: (parent.width - Theme.s) / 2
                iconName: "save"
                text: qsTr("VTT")
                tip: qsTr("Saves the captions as a WebVTT file")
                focusPolicy: Qt.TabFocus
                onClicked: root.save("vtt")
            }
        }
        Button {
            width: parent.width
            kind: "danger"
            iconName: "trash"
            text: qsTr("Remove the captions")
            tip: qsTr("Forgets all words; undo brings them back")
            focusPolicy: Qt.TabFocus
            onClicked: root.editor.removeCaptions()
        }
    }

    function save(kind) {
        target.name = root.editor.name + "." + kind;
        target.filters = [kind === "srt" ? qsTr("SubRip (*.srt)") : qsTr("WebVTT (*.vtt)")];
        target.ask();
    }

    FilePicker {
        id: target
        title: qsTr("Save captions")
        save: true
        onChosen: file => {
            const failure = root.editor.saveCaptions(file);
            root.saved = failure.length > 0 ? failure : qsTr("Saved.");
        }
    }
}
