import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

/// A list of things to do that opens over the window. Made of `MenuItem` and `MenuSeparator`.
T.Menu {
    id: menu

    implicitWidth: Math.max(200, contentWidth + leftPadding + rightPadding)
    implicitHeight: contentHeight + topPadding + bottomPadding
    margins: 8
    padding: 6
    overlap: 1
    delegate: MenuItem {}

    contentItem: ListView {
        implicitHeight: contentHeight
        implicitWidth: {
            let widest = 0;
            for (let i = 0; i < menu.count; ++i)
                widest = Math.max(widest, menu.itemAt(i).implicitWidth);
            return Math.min(420, widest);
        }
        model: menu.contentModel
        interactive: height < contentHeight
        clip: interactive
        currentIndex: menu.currentIndex
        T.ScrollBar.vertical: ScrollBar {}
    }
    background: Rectangle {
        color: Theme.raised
        radius: Theme.radiusM
        border.color: Theme.line
        Shadow {}
    }
    enter: Transition { NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.quick } }
    exit: Transition { NumberAnimation { property: "opacity"; from: 1; to: 0; duration: Theme.quick } }
}
