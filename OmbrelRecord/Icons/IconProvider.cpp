#include "OmbrelRecord/Icons/IconProvider.h"

#include "OmbrelRecord/Icons/IconSet.h"

#include <algorithm>

namespace OmbrelRecord {

IconProvider::IconProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

QImage IconProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
    const qsizetype slash = id.indexOf(u'/');
    QColor color(Qt::black);
    if (slash >= 0) color.setNamedColor(u'#' + id.mid(slash + 1));
    // A side that is not asked for follows the other one.
    const int plain = static_cast<int>(Icon::grid);
    const int other = std::max(requestedSize.width(), requestedSize.height());
    const auto side = [&](int asked) {
        return std::clamp(asked > 0 ? asked : other > 0 ? other : plain, 1, 2048);
    };
    const QImage image = IconSet::draw(slash >= 0 ? id.left(slash) : id, color,
                                       {side(requestedSize.width()), side(requestedSize.height())});
    if (size) *size = image.size();
    return image;
}

} // namespace OmbrelRecord
