#include "OmbrelRecord/EditorModel/PreviewPicture.h"

#include <gtest/gtest.h>

using namespace OmbrelRecord;
using RecordCore::NRect;

TEST(PreviewPicture, PointsGoThereAndBack) {
    // The window takes the middle half of the picture and shows the right lower quarter of a recording that
    // is cropped to its left half.
    PreviewPicture picture;
    const QImage image(8, 8, QImage::Format_RGB32);
    picture.show(image, 1, true,
                 {QRectF(0.25, 0.25, 0.5, 0.5), NRect{0.5, 0.5, 0.5, 0.5}, NRect{0, 0, 0.5, 1}});
    const struct {
        QPointF inPicture;
        QPointF inCrop;
        QPointF inWhole;
    } cases[] = {
        {{0.25, 0.25}, {0.5, 0.5}, {0.25, 0.5}},
        {{0.75, 0.75}, {1, 1}, {0.5, 1}},
        {{0.5, 0.25}, {0.75, 0.5}, {0.375, 0.5}},
        {{0, 0.25}, {0.25, 0.5}, {0.125, 0.5}},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(picture.recordingPoint(c.inPicture), c.inCrop);
        EXPECT_EQ(picture.picturePoint(c.inCrop), c.inPicture);
        EXPECT_EQ(picture.uncropped(c.inCrop), c.inWhole);
        EXPECT_EQ(picture.cropped(c.inWhole), c.inCrop);
    }
}

TEST(PreviewPicture, TellsNewPicturesFromNewTimes) {
    PreviewPicture picture;
    int pictures = 0;
    int placements = 0;
    QObject::connect(&picture, &PreviewPicture::changed, [&] { ++pictures; });
    QObject::connect(&picture, &PreviewPicture::placed, [&] { ++placements; });
    const QImage first(8, 8, QImage::Format_RGB32);
    picture.show(first, 1, true, {});
    picture.show(first, 2, true, {});
    EXPECT_EQ(pictures, 1) << "the same pixels need not be drawn again";
    picture.show(QImage(8, 8, QImage::Format_RGB32), 3, true, {});
    EXPECT_EQ(pictures, 2);
    EXPECT_EQ(placements, 3);
    EXPECT_EQ(picture.seconds(), 3);
}
