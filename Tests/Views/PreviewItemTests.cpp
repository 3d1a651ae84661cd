#include "OmbrelRecord/EditorModel/PreviewPicture.h"
#include "OmbrelRecord/EditorView/PreviewItem.h"
#include "Tests/Views/EditorFixture.h"

#include <QtCore/QCoreApplication>
#include <QtQuick/QQuickWindow>
#include <QtTest/QSignalSpy>
#include <gtest/gtest.h>

namespace OmbrelRecord {
namespace {

/// A preview that shows what the test gives it.
class GivenPreview : public EditorPreview {
public:
    void update(const RecordCore::Project&, const RecordCore::Plan&, std::function<void()> shown) override {
        shown();
    }
    void play() override {}
    void pause() override {}
    void seek(double) override {}
    PreviewPicture* picture() override { return &given; }
    PreviewPicture given;
};

/// A picture that shows whether it was resampled: every pixel differs from its neighbours.
QImage fine(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y, qRgb((x * 97 + y * 31) % 256, (x % 2) * 255, (y % 2) * 255));
    return image;
}

TEST(PreviewItem, ShowsPicturesPixelByPixelInTheirShape) {
    EditorFixture fixture;
    PreviewPicture* picture = nullptr;
    fixture.parts().makePreview = [&](const OpenedRecording&) {
        auto preview = std::make_unique<GivenPreview>();
        picture = preview->picture();
        return preview;
    };
    fixture.reopen();
    QQuickWindow window;
    window.setColor(Qt::black);
    window.resize(500, 401);
    PreviewItem item(window.contentItem());
    item.setSize(QSizeF(500, 401));
    item.setEditor(&fixture.model());
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->viewSize(), QSize(500, 401));
    EXPECT_FALSE(item.ready());
    window.show();

    // Of a canvas that just fits; it is even, 281.25 is not.
    const QImage image = fine(500, 282);
    const RecordCore::NRect crop{0.5, 0, 0.5, 1};
    picture->show(image, 1, true, {QRectF(0.1, 0.1, 0.8, 0.8), {0, 0, 0.5, 0.5}, crop});
    EXPECT_TRUE(item.ready());
    const QImage shown = window.grabWindow().convertToFormat(QImage::Format_RGB32);
    ASSERT_EQ(shown.size(), QSize(500, 401));
    EXPECT_EQ(item.pictureRect(), QRectF(0, 59, 500, 282));
    EXPECT_EQ(shown.copy(0, 59, 500, 282), image);
    EXPECT_EQ(shown.pixel(250, 58), qRgb(0, 0, 0));
    EXPECT_EQ(shown.pixel(250, 341), qRgb(0, 0, 0));
    // A new picture takes its place.
    const QImage next = image.mirrored();
    picture->show(next, 2, false, {QRectF(0.1, 0.1, 0.8, 0.8), {0, 0, 0.5, 0.5}, crop});
    EXPECT_FALSE(item.ready());
    EXPECT_EQ(window.grabWindow().convertToFormat(QImage::Format_RGB32).copy(0, 59, 500, 282), next);
    // What stood in was the right one all the time: no other picture follows, yet it is told.
    QSignalSpy told(&item, &PreviewItem::readyChanged);
    picture->show(next, 2, true, picture->placement());
    EXPECT_TRUE(item.ready());
    EXPECT_EQ(told.count(), 1);
    picture->show(next, 2.1, true, picture->placement());
    EXPECT_EQ(told.count(), 1) << "not with every moment that is played";

    // The upper left corner of the window shows that of the crop, the middle of it a quarter of the crop.
    const QPointF corner(50, 59 + 28.2);
    const QPointF middle(250, 200);
    EXPECT_NEAR(item.recordingPoint(corner).x(), 0, 1e-9);
    EXPECT_NEAR(item.recordingPoint(corner).y(), 0, 1e-9);
    EXPECT_NEAR(item.recordingPoint(middle).x(), 0.25, 1e-9);
    EXPECT_NEAR(item.wholePoint(middle).x(), 0.625, 1e-9);
    for (const QPointF& point : {corner, middle, QPointF(499, 3)}) {
        EXPECT_LT((item.itemPoint(item.recordingPoint(point)) - point).manhattanLength(), 1e-9);
        EXPECT_LT((item.itemPointOfWhole(item.wholePoint(point)) - point).manhattanLength(), 1e-9);
    }
    item.setVisible(false);
    EXPECT_TRUE(picture->viewSize().isEmpty()) << "what nobody sees is not worth composing";
}

} // namespace
} // namespace OmbrelRecord
