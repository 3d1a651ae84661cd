#pragma once

#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtGui/QColor>
#include <QtGui/QIcon>
#include <QtGui/QImage>
#include <QtGui/QPainterPath>
#include <memory>
#include <vector>

class QPainter;

namespace OmbrelRecord {

/// One symbol of the interface: strokes of 1.5 units on a grid of 20, and filled shapes, all in one colour.
struct Icon {
    struct Part {
        QPainterPath path;
        bool stroked = true;
        bool filled = false;
    };
    std::vector<Part> parts;

    static constexpr double grid = 20;
    static constexpr double strokeWidth = 1.5;

    /// Draws the symbol into a square of that side at the painter's origin.
    void paint(QPainter& painter, const QColor& color, double side) const;
};

/// The symbols by name ("zoom-in"), read from the program's resources when first asked for and kept. They are
/// drawn from their outlines at the size wanted, so they are crisp at every scale. Callable from any thread.
namespace IconSet {

/// All names in alphabetical order.
QStringList names();

/// The symbol of that name; null when there is none.
std::shared_ptr<const Icon> find(const QString& name);

/// The symbol in a picture of that size in pixels, centred, as large as the shorter side lets it be; a null
/// image when there is no such symbol.
QImage draw(const QString& name, const QColor& color, const QSize& pixels);

/// The application's own icon in all its sizes, for windows where the desktop does not know the program. Main
/// thread.
QIcon application();

/// Reads a drawing: `path` elements of an SVG with a view box of 20 × 20, stroked as a rule, with the
/// commands M L H V C A Z in capitals. Null when it is anything else.
std::shared_ptr<const Icon> read(const QByteArray& svg);

} // namespace IconSet
} // namespace OmbrelRecord
