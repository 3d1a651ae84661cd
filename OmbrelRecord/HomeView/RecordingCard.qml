// Not bound: a Loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// One recent recording: a still, when it was made, how long it is. Opens with a click or Return; the pointer
/// or the keyboard's focus brings the other things that can be done.
T.AbstractButton {
    id: control

    property var app
    property string folder
    property string still
    property real duration: 0
    property var date
    property date now: new Date()
    property bool current: false
    readonly property bool active: hovered || visualFocus || actions.hovered || current

    signal revealWanted()
    signal trashWanted()

    readonly property string length: {
        const s = Math.max(0, Math.floor(duration));
        const h = Math.floor(s / 3600), m = Math.floor(s / 60) % 60;
        const two = n => (n < 10 ? "0" : "") + n;
        return h > 0 ? h + ":" + two(m) + ":" + two(s % 60) : m + ":" + two(s % 60);
    }
    readonly property bool dated: date !== undefined && !isNaN(date.getTime())
    readonly property string day: {
        if (!dated) return qsTr("Undated recording");
        const start = d => new Date(d.getFullYear(), d.getMonth(), d.getDate()).getTime();
        const days = Math.round((start(now) - start(date)) / 86400000);
        // Hours and minutes as the locale writes them; some write seconds even in their short form.
        const time = date.toLocaleTimeString(Qt.locale(), Qt.locale().timeFormat(Locale.ShortFormat).replace(/[:.]ss/, ""));
        if (days === 0) return qsTr("Today, %1").arg(time);
        if (days === 1) return qsTr("Yesterday, %1").arg(time);
        return date.getFullYear() === now.getFullYear()
            ? date.toLocaleDateString(Qt.locale(), qsTr("d MMMM")) + ", " + time
            : date.toLocaleDateString(Qt.locale(), qsTr("d MMM yyyy")) + ", " + time;
    }
    readonly property string age: {
        if (!dated) return "";
        const minutes = Math.max(0, Math.floor((now.getTime() - date.getTime()) / 60000));
        if (minutes < 1) return qsTr("just now");
        if (minutes < 60) return minutes === 1 ? qsTr("a minute ago") : qsTr("%1 minutes ago").arg(minutes);
        const hours = Math.floor(minutes / 60);
        if (hours < 24) return hours === 1 ? qsTr("an hour ago") : qsTr("%1 hours ago").arg(hours);
        const days = Math.floor(hours / 24);
        if (days < 30) return days === 1 ? qsTr("a day ago") : qsTr("%1 days ago").arg(days);
        const months = Math.floor(days / 30);
        if (days < 365) return months === 1 ? qsTr("a month ago") : qsTr("%1 months ago").arg(months);
        const years = Math.floor(days / 365);
        return years === 1 ? qsTr("a year ago") : qsTr("%1 years ago").arg(years);
    }

    implicitWidth: 212
    implicitHeight: 184
    topPadding: 4
    hoverEnabled: true
    focusPolicy: Qt.StrongFocus
    text: day
    Accessible.role: Accessible.Button
    Accessible.name: qsTr("Recording, %1").arg(day)
    Accessible.description: duration > 0 ? qsTr("%1 long, %2").arg(length).arg(age) : age
    Keys.onReturnPressed: clicked()
    Keys.onEnterPressed: clicked()
    Keys.onDeletePressed: trashWanted()
    Keys.onMenuPressed: menu.open()

    background: Item {}
    contentItem: Item {
        Rectangle {
            id: frame
            width: parent.width
            height: Math.round(width * 0.625)
            radius: Theme.radiusM
            color: Theme.dark ? "#1E2129" : "#E6E9EE"

            Icon {
                anchors.centerIn: parent
                visible: picture.empty
                name: "film"
                color: Theme.secondary
                size: 28
            }
            Picture {
                id: picture
                anchors.fill: parent
                app: control.app
                name: control.still
                radius: Theme.radiusM
            }
            Rectangle {
                anchors.fill: parent
                radius: parent.radius
                color: control.down ? "#3C000000" : control.hovered || actions.hovered ? "#26000000" : "transparent"
                border.width: 1
                border.color: Theme.dark ? "#1AFFFFFF" : "#14000000"
                Behavior on color { ColorAnimation { duration: Theme.quick } }
            }
            Rectangle {
                visible: control.duration > 0
                anchors { right: parent.right; bottom: parent.bottom; margins: 8 }
                width: shownLength.implicitWidth + 12
                height: 22
                radius: 6
                color: Theme.overPicture

                Text {
                    id: shownLength
                    anchors.centerIn: parent
                    text: control.length
                    textFormat: Text.PlainText
                    font: Theme.tiny
                    color: Theme.onFill
                }
            }
            FocusRing { shown: control.visualFocus; radius: Theme.radiusM + 3 }
        }
        Label {
            id: title
            anchors { left: frame.left; right: frame.right; top: frame.bottom; topMargin: 9 }
            text: control.day
            font: Theme.strong
            horizontalAlignment: Text.AlignLeft
            Accessible.ignored: true
        }
        Label {
            anchors { left: frame.left; right: frame.right; top: title.bottom; topMargin: 1 }
            text: control.age
            font: Theme.tiny
            secondary: true
            horizontalAlignment: Text.AlignLeft
            Accessible.ignored: true
        }
    }

    // Beside the content, not in it: a press on them is none on the card.
    Row {
        id: actions
        readonly property bool hovered: reveal.hovered || trash.hovered

        visible: control.active
        anchors { right: parent.right; top: parent.top; margins: 8; topMargin: 12 }
        spacing: 6

        IconButton {
            id: reveal
            implicitWidth: 30
            implicitHeight: 30
            iconSize: 18
            iconName: "reveal"
            overPicture: true
            // The keyboard has Delete and the menu for it; its focus stays on the card.
            focusPolicy: Qt.NoFocus
            tip: qsTr("Show in the file manager")
            onClicked: control.revealWanted()
        }
        IconButton {
            id: trash
            implicitWidth: 30
            implicitHeight: 30
            iconSize: 18
            iconName: "trash"
            overPicture: true
            // The keyboard has Delete and the menu for it; its focus stays on the card.
            focusPolicy: Qt.NoFocus
            tip: qsTr("Move to Trash")
            keys: qsTr("Delete")
            onClicked: control.trashWanted()
        }
    }

    TapHandler {
        acceptedButtons: Qt.RightButton
        onTapped: menu.open()
    }
    Loader {
        id: menu
        function open() {
            active = true;
            (item as Menu).popup();
        }
        active: false
        sourceComponent: Menu {
            MenuItem { text: qsTr("Open"); iconName: "open"; keys: qsTr("Return"); onTriggered: control.clicked() }
            MenuItem { text: qsTr("Show in the file manager"); iconName: "reveal"; onTriggered: control.revealWanted() }
            MenuSeparator {}
            MenuItem {
                text: qsTr("Move to Trash"); iconName: "trash"; keys: qsTr("Delete"); danger: true
                onTriggered: control.trashWanted()
            }
        }
    }
}
