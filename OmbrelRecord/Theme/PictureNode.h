#pragma once

#include <QtCore/QRectF>
#include <QtGui/QImage>
#include <functional>

class QQuickItem;
class QSGNode;

namespace OmbrelRecord {

/// Pictures in the scene graph: the one way that is smooth and right with and without a GPU. On the thread
/// that renders, from an item's `updatePaintNode`.
namespace PictureNode {

/// The item's node, showing a picture in `rect` of the item; `old` is what the scene graph gave. `make` is
/// asked for the picture, at device pixels, where there is no node yet or `stale`, which is cleared. A
/// picture that is null leaves no node.
QSGNode* show(QQuickItem& item, QSGNode* old, const QRectF& rect, bool& stale,
              const std::function<QImage()>& make);

struct Fit {
    double radius = 0;     ///< of the corners, device pixels
    bool whole = false;    ///< all of the picture, with room at its sides, instead of filling the place
    bool mirrored = false; ///< left and right changed
};

/// A picture drawn to fill a place of so many device pixels, in its own shape, with round and smooth corners.
QImage fitted(const QImage& picture, const QSize& pixels, const Fit& fit);

} // namespace PictureNode
} // namespace OmbrelRecord
