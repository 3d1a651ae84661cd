pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// What has been recorded, newest first, in a row.
Item {
    id: root

    property var app
    /// What ages are counted from.
    property date now: new Date()

    ListView {
        id: list
        anchors {
            fill: parent
            leftMargin: -4; rightMargin: -4; topMargin: Theme.s
        }
        orientation: ListView.Horizontal
        spacing: Theme.l
        model: root.app?.recents ?? null
        clip: true
        // Room for the focus ring, which the list's edge would cut.
        leftMargin: 4
        rightMargin: 4
        boundsBehavior: Flickable.StopAtBounds
        reuseItems: true
        keyNavigationEnabled: true
        highlightMoveDuration: Theme.gentle
        activeFocusOnTab: true
        Accessible.role: Accessible.List
        Accessible.name: qsTr("Recent recordings")
        T.ScrollBar.horizontal: ScrollBar {}

        delegate: RecordingCard {
            required property var model
            required property int index
            app: root.app
            folder: model.folder
            still: model.still
            duration: model.duration
            date: model.date
            now: root.now
            focusPolicy: Qt.ClickFocus
            current: ListView.isCurrentItem && ListView.view.activeFocus
            onClicked: root.app.open(folder)
            onRevealWanted: root.app.reveal(folder)
            onTrashWanted: root.app.trash(folder)

            FocusRing {
                anchors.topMargin: 4 - 3
                anchors.bottomMargin: parent.height - 4 - Math.round(parent.width * 0.625) - 3
                shown: parent.current
                radius: Theme.radiusM + 3
            }
        }
        Keys.onReturnPressed: if (currentItem) (currentItem as RecordingCard).clicked()
        Keys.onEnterPressed: if (currentItem) (currentItem as RecordingCard).clicked()
        Keys.onDeletePressed: if (currentItem) (currentItem as RecordingCard).trashWanted()

        WheelHandler {
            // A wheel that only turns up and down moves the row, too.
            orientation: Qt.Vertical
            acceptedDevices: PointerDevice.Mouse | PointerDevice.TouchPad
            onWheel: event => {
                const low = list.originX - list.leftMargin;
                const high = Math.max(low, list.originX + list.contentWidth - list.width + list.rightMargin);
                list.contentX = Math.max(low, Math.min(high, list.contentX - event.angleDelta.y));
            }
        }
    }
}
