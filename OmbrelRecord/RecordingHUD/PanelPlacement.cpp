#include "OmbrelRecord/RecordingHUD/PanelPlacement.h"

#include <QtCore/QRectF>
#include <algorithm>

namespace OmbrelRecord::PanelPlacement {

QRect pixels(const Display& display, const QRect& place) {
    const QRectF scaled(display.frame.x() + (place.x() - display.origin.x()) * display.ratio,
                        display.frame.y() + (place.y() - display.origin.y()) * display.ratio,
                        place.width() * display.ratio, place.height() * display.ratio);
    return scaled.toAlignedRect();
}

std::optional<QRect> place(const std::vector<Display>& displays, QSize panel, const QRect& recorded) {
    std::vector<Display> order = displays;
    std::stable_sort(order.begin(), order.end(),
                     [](const Display& a, const Display& b) { return a.main && !b.main; });
    for (const Display& display : order) {
        const QRect& visible = display.visible;
        if (visible.width() < panel.width() || visible.height() < panel.height() + 2 * margin) continue;
        const int x = visible.x() + (visible.width() - panel.width()) / 2;
        const int bottom = visible.y() + visible.height() - margin - panel.height();
        const int top = visible.y() + margin;
        for (const int y : {bottom, top}) {
            const QRect spot(QPoint(x, y), panel);
            // Displays that show the same part of the desktop are recorded with each other.
            if (!pixels(display, spot).intersects(recorded)) return spot;
        }
    }
    return std::nullopt;
}

} // namespace OmbrelRecord::PanelPlacement
