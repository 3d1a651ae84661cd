#include "OmbrelRecord/Icons/IconProvider.h"
#include "OmbrelRecord/Icons/IconSet.h"

#include <QtCore/QDir>
#include <QtGui/QPainter>
#include <cmath>
#include <gtest/gtest.h>

using namespace OmbrelRecord;

namespace {

QByteArray svg(const char* path) {
    return QByteArray("<svg viewBox=\"0 0 20 20\"><path d=\"") + path + "\"/></svg>";
}

} // namespace

TEST(Icons, everyDrawingIsReadAndStaysOnItsGrid) {
    const QStringList files = QDir(QStringLiteral(OMBREL_SOURCE_DIR "/OmbrelRecord/Resources/icons"))
                                  .entryList({QStringLiteral("*.svg")}, QDir::Files);
    ASSERT_EQ(IconSet::names().size(), files.size());
    ASSERT_GT(files.size(), 50);
    for (const QString& name : IconSet::names()) {
        const auto icon = IconSet::find(name);
        ASSERT_TRUE(icon) << name.toStdString();
        // Drawn with a margin all around: nothing may stand outside of the grid.
        QImage image(240, 240, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        painter.translate(20, 20);
        icon->paint(painter, Qt::white, 200);
        painter.end();
        int inside = 0;
        int outside = 0;
        for (int y = 0; y < 240; ++y)
            for (int x = 0; x < 240; ++x) {
                const bool ink = qAlpha(image.pixel(x, y)) > 0;
                (QRect(20, 20, 200, 200).contains(x, y) ? inside : outside) += ink;
            }
        EXPECT_EQ(outside, 0) << name.toStdString();
        EXPECT_GT(inside, 200 * 200 / 50) << name.toStdString() << " can hardly be seen";
    }
}

TEST(Icons, arcsGoTheWayTheyAreDrawn) {
    struct Case {
        const char* path;
        QPointF on;  ///< on the arc
        QPointF off; ///< where one of the three other arcs would be
    };
    // The four arcs of radius 5 between two points 6 apart: their middles lie 1 or 9 from the chord.
    for (const Case& c :
         {Case{"M7 10A5 5 0 0 1 13 10", {10, 9}, {10, 11}}, Case{"M7 10A5 5 0 0 0 13 10", {10, 11}, {10, 9}},
          Case{"M7 10A5 5 0 1 1 13 10", {10, 1}, {10, 11}}, Case{"M7 10A5 5 0 1 0 13 10", {10, 19}, {10, 9}},
          Case{"M5 10A1 1 0 0 1 15 10", {10, 5}, {10, 9}}}) {
        const auto icon = IconSet::read(svg(c.path));
        ASSERT_TRUE(icon) << c.path;
        QPainterPathStroker stroker;
        stroker.setWidth(0.2);
        const QPainterPath line = stroker.createStroke(icon->parts.front().path);
        EXPECT_TRUE(line.contains(c.on)) << c.path;
        EXPECT_FALSE(line.contains(c.off)) << c.path;
    }
}

TEST(Icons, whatCannotBeReadIsRefused) {
    for (const char* path :
         {"", "L3 3", "M3", "M3 3 Q4 4 5 5", "M3 3A4 5 0 0 1 9 9", "M3 3L4 4Z 5 5", "M3 3 x"})
        EXPECT_FALSE(IconSet::read(svg(path))) << path;
    EXPECT_FALSE(IconSet::read("<svg viewBox=\"0 0 24 24\"><path d=\"M3 3L4 4\"/></svg>"));
    EXPECT_FALSE(IconSet::read("<svg viewBox=\"0 0 20 20\"><circle r=\"3\"/></svg>"));
    EXPECT_FALSE(IconSet::read("<svg viewBox=\"0 0 20 20\"><path d=\"M3 3L4 4\"/>"));
    EXPECT_FALSE(IconSet::find(QStringLiteral("no-such-symbol")));
    EXPECT_TRUE(IconSet::draw(QStringLiteral("no-such-symbol"), Qt::black, {20, 20}).isNull());
}

TEST(Icons, areDrawnInTheColourAndSizeAskedFor) {
    IconProvider provider;
    QSize size;
    const QImage stop = provider.requestImage(QStringLiteral("stop/80ff4000"), &size, {30, 50});
    EXPECT_EQ(size, QSize(30, 50));
    const QColor middle = stop.pixelColor(15, 25);
    EXPECT_NEAR(middle.alpha(), 128, 1) << "fill and stroke of one shape must not add up";
    EXPECT_NEAR(middle.red(), 255, 2);
    EXPECT_NEAR(middle.green(), 64, 2);
    EXPECT_NEAR(middle.blue(), 0, 2);
    EXPECT_EQ(qAlpha(stop.pixel(15, 5)), 0) << "not stretched";
    EXPECT_EQ(provider.requestImage(QStringLiteral("play/000000"), nullptr, {}).size(), QSize(20, 20));
    EXPECT_EQ(provider.requestImage(QStringLiteral("play/000000"), nullptr, {33, 0}).size(), QSize(33, 33));
    EXPECT_TRUE(provider.requestImage(QStringLiteral("nothing/000000"), &size, {}).isNull());
}

TEST(Icons, theApplicationHasOneInEverySize) {
    for (const int size : {16, 24, 32, 48, 64, 128, 256}) {
        const QImage image = IconSet::application().pixmap(QSize(size, size)).toImage();
        ASSERT_EQ(image.size(), QSize(size, size));
        const QColor middle = image.pixelColor(size / 2, size / 2);
        EXPECT_GT(middle.red(), 200) << size; // the record dot
        EXPECT_LT(middle.green(), 140) << size;
        EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0) << size;
    }
}
