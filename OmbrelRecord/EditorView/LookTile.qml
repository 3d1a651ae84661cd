// Not bound: a Loader of Qt 6.4 cannot make bound components.
// qmllint disable unqualified
import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// A look to choose: the film in it, and its name. One of the user's own can be renamed (F2) and deleted.
T.AbstractButton {
    id: root

    required property LookPictures pictures
    required property int row
    required property string name
    property bool own: false
    /// Height over width of a picture.
    property real shape: 0.5625

    signal picked()
    signal renamed(string name)
    signal replaceWanted()
    signal deleteWanted()

    implicitHeight: Math.round(width * shape) + 26
    hoverEnabled: true
    focusPolicy: Qt.TabFocus
    onClicked: picked()
    Keys.onReturnPressed: picked()
    Keys.onEnterPressed: picked()
    Keys.onPressed: event => {
        event.accepted = own && (event.key === Qt.Key_F2 || event.key === Qt.Key_Delete || event.key === Qt.Key_Menu);
        if (!event.accepted)
            return;
        if (event.key === Qt.Key_F2)
            rename();
        else if (event.key === Qt.Key_Delete)
            deleteWanted();
        else
            menu.open();
    }
    Accessible.role: Accessible.RadioButton
    Accessible.name: name
    Accessible.description: tip.text
    Accessible.checkable: true
    Accessible.checked: checked

    function rename() {
        field.active = true;
        field.item.text = root.name;
        field.item.selectAll();
        field.item.forceActiveFocus(Qt.TabFocusReason);
    }

    contentItem: Item {
        Rectangle {
            id: frame
            width: parent.width
            height: parent.height - 26
            radius: Theme.radiusS
            color: Theme.sunken

            LookPicture {
                id: picture
                anchors.fill: parent
                pictures: root.pictures
                row: root.row
                radius: Theme.radiusS
            }
            Icon {
                anchors.centerIn: parent
                visible: picture.empty
                name: "palette"
                color: Theme.secondary
            }
            Rectangle {
                anchors.fill: parent
                radius: parent.radius
                color: root.down ? "#28000000" : "transparent"
                border.color: root.hovered ? Theme.outline : Theme.dark ? "#20FFFFFF" : "#1A000000"
            }
            Rectangle {
                anchors.fill: parent
                anchors.margins: -2
                radius: Theme.radiusS + 2
                visible: root.checked
                color: "transparent"
                border.width: 2
                border.color: Theme.accent
            }
            Rectangle {
                visible: root.checked
                anchors.right: parent.right
                anchors.bottom: parent.bottom
                anchors.margins: 5
                width: 16
                height: 16
                radius: 8
                color: Theme.accentFill
                Icon {
                    anchors.centerIn: parent
                    name: "check"
                    size: 12
                    color: Theme.onFill
                }
            }
            FocusRing { shown: root.visualFocus }
        }
        Label {
            anchors.left: parent.left
            anchors.right: parent.right
            anchors.rightMargin: root.own ? 24 : 0
            anchors.bottom: parent.bottom
            height: 22
            visible: !field.active
            verticalAlignment: Text.AlignVCenter
            horizontalAlignment: Text.AlignLeft
            font: Theme.tiny
            secondary: !root.checked
            text: root.name
            Accessible.ignored: true
        }
    }

    IconButton {
        id: more
        visible: root.own && !field.active
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        implicitWidth: 24
        implicitHeight: 22
        iconName: "more"
        iconSize: 16
        tip: qsTr("Rename or delete %1").arg(root.name)
        focusPolicy: Qt.TabFocus
        onClicked: menu.open()
    }
    Loader {
        id: field
        active: false
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        height: 24
        sourceComponent: TextField {
            implicitHeight: 24
            leftPadding: 6
            rightPadding: 6
            font: Theme.tiny
            label: qsTr("New name of the look")
            maximumLength: 40
            onAccepted: {
                root.renamed(text);
                field.leave();
            }
            Keys.onEscapePressed: field.leave()
            onActiveFocusChanged: if (!activeFocus) away.start()
        }

        function leave() {
            root.forceActiveFocus(Qt.TabFocusReason);
        }
    }
    TapHandler {
        acceptedButtons: Qt.RightButton
        enabled: root.own
        onTapped: menu.open()
    }
    // Not from within what the menu or the field is just doing.
    Timer { id: naming; interval: 0; onTriggered: root.rename() }
    Timer { id: away; interval: 0; onTriggered: field.active = false }
    Loader {
        id: menu
        function open() {
            active = true;
            const list = item as Menu;
            list.popup(root, root.width - list.implicitWidth, root.height);
        }
        active: false
        sourceComponent: Menu {
            MenuItem { text: qsTr("Rename"); iconName: "pencil"; keys: qsTr("F2"); onTriggered: naming.start() }
            MenuItem { text: qsTr("Replace with the film's look"); iconName: "save"; onTriggered: root.replaceWanted() }
            MenuSeparator {}
            MenuItem {
                text: qsTr("Delete"); iconName: "trash"; keys: qsTr("Del"); danger: true
                onTriggered: root.deleteWanted()
            }
        }
    }
    Tooltip { id: tip; text: qsTr("Gives the film this look"); shown: root.hovered && !more.hovered || root.visualFocus }
}
