import QtQuick
import QtQuick.Templates as T
import OmbrelRecord

T.MenuSeparator {
    implicitHeight: 13
    implicitWidth: 40
    padding: 6
    contentItem: Hairline {}
}
