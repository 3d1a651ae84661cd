pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// Displays and windows to choose from, with a picture of each.
T.Popup {
    id: popup

    property var app

    function pick(display, window) {
        if (window)
            app.chooseWindow(window);
        else
            app.chooseDisplay(display);
        close();
    }

    parent: T.Overlay.overlay
    anchors.centerIn: parent
    width: Math.min(4 * 184 + 2 * Theme.xl, parent ? parent.width - 80 : 600)
    height: Math.min(content.implicitHeight + 2 * Theme.xl, parent ? parent.height - 80 : 500)
    padding: Theme.xl
    modal: true
    focus: true
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutside
    onAboutToShow: {
        app.refreshDisplays();
        if (typeof app.refreshSourceStills === "function") app.refreshSourceStills();
    }
    T.Overlay.modal: Rectangle { color: Theme.scrim }
    enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.quick } }
    exit: Transition { NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.quick } }

    background: Rectangle {
        color: Theme.raised
        radius: Theme.radiusL
        border.color: Theme.line
        Shadow { radius: Theme.radiusL; reach: 30 }
    }

    contentItem: Flickable {
        clip: true
        contentHeight: content.implicitHeight
        interactive: contentHeight > height
        boundsBehavior: Flickable.StopAtBounds
        T.ScrollBar.vertical: ScrollBar {}

        Column {
            id: content
            width: parent.width
            spacing: Theme.m

            Item {
                width: parent.width
                height: 32
                Label {
                    anchors.left: parent.left
                    anchors.verticalCenter: parent.verticalCenter
                    text: qsTr("What to record")
                    font: Theme.title
                }
                IconButton {
                    anchors { right: parent.right; verticalCenter: parent.verticalCenter }
                    iconName: "close"
                    tip: qsTr("Close")
                    onClicked: popup.close()
                }
            }
            Label { width: parent.width; text: qsTr("Displays"); secondary: true; font: Theme.strong }
            Flow {
                width: parent.width
                spacing: Theme.s

                Repeater {
                    model: popup.app.displays

                    SourceTile {
                        required property var modelData
                        required property int index

                        focus: index === 0
                        app: popup.app
                        still: "display/" + modelData.id
                        revision: popup.app.sourceStillsRevision ?? 0
                        iconName: "display"
                        text: modelData.name
                        detail: modelData.width + " × " + modelData.height
                        checked: !popup.app.windowID && popup.app.displayID === modelData.id
                        onClicked: popup.pick(modelData.id, 0)
                    }
                }
            }
            Label {
                visible: popup.app.displays.length === 0
                text: qsTr("No display can be seen. Log in to a desktop session and open this again.")
                secondary: true
            }
            Label { width: parent.width; text: qsTr("Windows"); secondary: true; font: Theme.strong }
            Flow {
                width: parent.width
                spacing: Theme.s

                Repeater {
                    model: popup.app.windows

                    SourceTile {
                        required property var modelData

                        app: popup.app
                        still: "window/" + modelData.id
                        revision: popup.app.sourceStillsRevision ?? 0
                        text: modelData.title.length > 0 ? modelData.title : modelData.application
                        detail: modelData.application
                        checked: popup.app.windowID === modelData.id
                        onClicked: popup.pick(0, modelData.id)
                    }
                }
            }
            Label {
                visible: popup.app.windows.length === 0
                width: parent.width
                wrapMode: Text.WordWrap
                text: qsTr("No window is open that could be recorded alone.")
                secondary: true
            }
        }
    }
}
