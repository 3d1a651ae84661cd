import QtQuick
import OmbrelRecord

/// A surface that holds things that belong together.
Rectangle {
    color: Theme.surface
    radius: Theme.radiusM
    border.width: 1
    border.color: Theme.line
}
