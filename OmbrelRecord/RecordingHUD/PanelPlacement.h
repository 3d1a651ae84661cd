#pragma once

#include <QtCore/QRect>
#include <QtCore/QSize>
#include <optional>
#include <vector>

namespace OmbrelRecord {

/// Where the recording panel may stand without being in the film. Pure.
namespace PanelPlacement {

/// A display of the desktop.
struct Display {
    QRect frame;     ///< in pixels of the desktop
    QRect visible;   ///< the part that task bars leave free, in points
    QPoint origin;   ///< of the display, in points
    qreal ratio = 1; ///< pixels per point
    bool main = false;
};

/// The distance to the visible frame's bottom, in points.
inline constexpr int margin = 10;

/// The panel's place in points: centred at the bottom of the main display's visible frame, or of another
/// display's where that would lie in the recorded area (in pixels of the desktop; an empty one is nowhere).
/// Of a display that is recorded in part (a window on it) the top is tried, too. None when there is no place
/// outside: the panel is not shown then.
std::optional<QRect> place(const std::vector<Display>& displays, QSize panel, const QRect& recorded);

/// A place in points as pixels of the desktop, whole pixels outwards.
QRect pixels(const Display& display, const QRect& place);

} // namespace PanelPlacement
} // namespace OmbrelRecord
